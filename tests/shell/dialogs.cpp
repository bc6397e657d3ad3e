#include "shell/dialogs/DialogAnswers.h"
#include "shell/dialogs/UnattendedDialogs.h"
#include "support/LogRecorder.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QFileDialog>
#include <QInputDialog>
#include <QJsonArray>
#include <QJsonObject>
#include <QMessageBox>
#include <QTemporaryDir>

using shell::DialogAnswers;
using testing::AllOf;
using testing::HasSubstr;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

TEST(DialogAnswersOf, AreTakenInTheOrderInWhichTheyWereSet)
{
    DialogAnswers answers;
    EXPECT_EQ(answers.add(s("messageBox"), s("yes"), 2), QString());
    EXPECT_EQ(answers.add(s("messageBox"), QJsonValue()), QString());
    EXPECT_EQ(answers.take(s("input")), std::nullopt);
    EXPECT_EQ(answers.take(s("messageBox")), QJsonValue(s("yes")));
    EXPECT_EQ(answers.take(s("messageBox")), QJsonValue(s("yes")));
    EXPECT_EQ(answers.take(s("messageBox")), QJsonValue());
    EXPECT_EQ(answers.take(s("messageBox")), std::nullopt);
}

TEST(DialogAnswersOf, RefuseWhatDoesNotFit)
{
    const struct
    {
        const char* kind;
        QJsonValue value;
        int times;
        const char* error;
    } cases[] = {{"colour", s("red"), 1, "no dialog \"colour\""},
                 {"file", s("/a"), 1, "a list of paths"},
                 {"file", QJsonArray{1}, 1, "a list of paths"},
                 {"saveFile", QJsonArray{s("/a")}, 1, "a text"},
                 {"login", s("ann"), 1, "\"userId\""},
                 {"print", s("/a"), 0, "\"times\""}};
    for (const auto& [kind, value, times, error] : cases) {
        DialogAnswers answers;
        EXPECT_THAT(answers.add(s(kind), value, times).toStdString(), HasSubstr(error)) << kind;
        EXPECT_EQ(answers.take(s(kind)), std::nullopt) << kind;
    }
}

class UnattendedDialogsOf : public testing::Test
{
protected:
    std::string lastLine() const { return log.lines().constLast().toStdString(); }

    LogRecorder log;
    DialogAnswers answers;
    shell::UnattendedDialogs dialogs{answers};
    QTemporaryDir directory;
};

TEST_F(UnattendedDialogsOf, AnswersASaveDialogOfTheToolkit)
{
    const QString existing = directory.filePath(s("there.txt"));
    QFile file(existing);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const QString& path : {directory.filePath(s("new.txt")), existing}) {
        answers.add(s("saveFile"), path);
        EXPECT_EQ(QFileDialog::getSaveFileName(nullptr, s("Keep"), s("/tmp/proposed.txt"), s("*.*")), path);
        EXPECT_THAT(lastLine(),
                    AllOf(HasSubstr("dialog answered: saveFile \"Keep\""), HasSubstr(path.toStdString())));
    }
    EXPECT_EQ(QFileDialog::getSaveFileName(nullptr, s("Keep")), QString());
    EXPECT_THAT(lastLine(), HasSubstr("dialog cancelled: saveFile"));
}

TEST_F(UnattendedDialogsOf, CancelsADialogThatDoesNotTakeTheAnswer)
{
    answers.add(s("file"), QJsonArray{directory.filePath(s("missing"))});
    EXPECT_EQ(QFileDialog::getOpenFileName(), QString());
    EXPECT_THAT(lastLine(), AllOf(HasSubstr("dialog cancelled: file"), HasSubstr("it does not take")));

    answers.add(s("messageBox"), s("retry"));
    EXPECT_EQ(QMessageBox::question(nullptr, s("T"), s("Sure?")), QMessageBox::NoButton);
    EXPECT_THAT(lastLine(), AllOf(HasSubstr("\"Sure?\""), HasSubstr("it does not take \"retry\"")));
}

TEST_F(UnattendedDialogsOf, PressesButtonsAndTypesTexts)
{
    answers.add(s("messageBox"), s("yes"));
    EXPECT_EQ(QMessageBox::question(nullptr, s("T"), s("Sure?")), QMessageBox::Yes);
    EXPECT_THAT(lastLine(), HasSubstr("dialog answered: messageBox \"T\": \"Sure?\": \"yes\""));
    answers.add(s("input"), s("typed"));
    EXPECT_EQ(QInputDialog::getText(nullptr, s("T"), s("Name")), s("typed"));
    EXPECT_EQ(QInputDialog::getText(nullptr, s("T"), s("Name")), QString());
}

} // namespace
