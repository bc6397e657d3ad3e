#include "shell/control/LineReader.h"
#include "shell/control/LineWriter.h"

#include <gmock/gmock.h>

#include <QSignalSpy>
#include <QTest>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <thread>
#include <vector>

namespace {

using shell::FileDescriptor;
using shell::LineSplitter;

TEST(LineSplitter, CutsAtLineEndsWhereverTheBytesAreCut)
{
    const QByteArray stream = "one\r\n\ntwo\n3456\n1234567\nrest\n";
    for (int step = 1; step <= stream.size(); ++step) {
        LineSplitter splitter(5);
        std::deque<LineSplitter::Line> lines;
        for (int at = 0; at < stream.size(); at += step)
            splitter.feed(stream.mid(at, step), lines);
        std::vector<std::string> texts;
        for (const LineSplitter::Line& line : lines)
            texts.push_back(line.tooLong ? "!" : line.text.toStdString());
        EXPECT_EQ(texts, std::vector<std::string>({"one", "", "two", "3456", "!", "rest"})) << step;
    }
}

struct Pipe
{
    Pipe()
    {
        std::array<int, 2> ends = {};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        readEnd = FileDescriptor(ends[0]);
        writeEnd = FileDescriptor(ends[1]);
    }

    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

QByteArray readAll(const FileDescriptor& input)
{
    QByteArray bytes;
    std::array<char, 65536> buffer = {};
    ssize_t count = 0;
    while ((count = ::read(input.get(), buffer.data(), buffer.size())) > 0)
        bytes.append(buffer.data(), static_cast<int>(count));
    return bytes;
}

TEST(LineReader, ReportsLinesInOrderThenTheEnd)
{
    Pipe pipe;
    shell::LineReader reader(std::move(pipe.readEnd));
    QSignalSpy lines(&reader, &shell::LineReader::lineRead);
    QSignalSpy ended(&reader, &shell::LineReader::ended);
    const QByteArray bytes = "first\n\nsecond\nunfinished";
    ASSERT_EQ(::write(pipe.writeEnd.get(), bytes.constData(), static_cast<size_t>(bytes.size())),
              bytes.size());
    pipe.writeEnd = FileDescriptor();
    ASSERT_TRUE(ended.wait());
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines.at(0).at(0).toByteArray(), QByteArray("first"));
    EXPECT_EQ(lines.at(1).at(0).toByteArray(), QByteArray("second"));
}

TEST(LineWriter, DoesNotWaitForAReaderAndKeepsTheOrderOfManyThreads)
{
    constexpr int linesPerThread = 300;
    const QByteArray filling(5000, 'x'); // more than the pipe holds, many times over
    Pipe pipe;
    std::optional<shell::LineWriter> writer(std::in_place, std::move(pipe.writeEnd));
    const auto writeLines = [&](char name) {
        for (int i = 0; i < linesPerThread; ++i)
            writer->write(name + QByteArray::number(i) + ' ' + filling + '\n');
    };
    std::thread other([&] { writeLines('b'); });
    writeLines('a'); // would never return if it waited: nobody reads yet
    other.join();

    QByteArray read;
    std::thread reader([&] { read = readAll(pipe.readEnd); });
    writer.reset(); // writes what is left, then closes
    reader.join();

    int nextA = 0;
    int nextB = 0;
    const QList<QByteArray> lines = read.split('\n');
    ASSERT_EQ(lines.size(), 2 * linesPerThread + 1);
    for (int i = 0; i < 2 * linesPerThread; ++i) {
        const QByteArray& line = lines.at(i);
        int& next = line.startsWith('a') ? nextA : nextB;
        EXPECT_EQ(line.mid(1), QByteArray::number(next++) + ' ' + filling);
    }
}

TEST(LineWriter, WritesFromTheEventLoopWhatTheReaderWasNotReadyFor)
{
    Pipe pipe;
    shell::LineWriter writer(std::move(pipe.writeEnd));
    const QByteArray line = QByteArray(1024 * 1024, 'y') + '\n';
    writer.write(line);
    QByteArray read;
    ::fcntl(pipe.readEnd.get(), F_SETFL, O_NONBLOCK);
    const bool complete = QTest::qWaitFor([&] {
        read += readAll(pipe.readEnd);
        return read.size() >= line.size();
    });
    EXPECT_TRUE(complete);
    EXPECT_EQ(read, line);
}

TEST(LineWriter, SurvivesAReaderThatGoes)
{
    ::signal(SIGPIPE, SIG_IGN);
    Pipe pipe;
    shell::LineWriter writer(std::move(pipe.writeEnd));
    pipe.readEnd = FileDescriptor();
    writer.write("nobody hears this\n");
    writer.write("nor this\n");
}

} // namespace
