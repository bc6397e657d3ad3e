#pragma once

#include <cstddef>
#include <memory>

#include <QByteArray>
#include <QString>

namespace documents {

/** The SHA-1 of bytes that come in pieces. */
class Sha1
{
public:
    Sha1();
    ~Sha1();

    void add(const char* data, std::size_t size);

    /** Of everything added, which ends the sum: 40 lower-case hexadecimal digits. */
    QString finish();

    static QString of(const QByteArray& bytes);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace documents
