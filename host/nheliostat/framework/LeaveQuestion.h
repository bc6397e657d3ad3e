#pragma once

#include <QMessageBox>
#include <QString>
#include <QVector>

/** The question whether documents may go although words would be lost. */
namespace LeaveQuestion {

struct Document
{
    QString title;
    bool isUnsaved = true; //!< false: it does not answer
};

/** The answer that lets them go. */
constexpr int leave = QMessageBox::Discard;

/** Not shown; deletes itself when it closes. `parent` may be null; the documents are not empty. */
QMessageBox* make(const QVector<Document>& documents, bool isRestart, QWidget* parent);

} // namespace LeaveQuestion
