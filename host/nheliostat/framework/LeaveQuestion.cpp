#include "nheliostat/framework/LeaveQuestion.h"

#include <QCoreApplication>
#include <QPushButton>

#include <algorithm>

namespace {

/** Titles are the pages' own: what is longer would push the buttons off the screen. */
constexpr int longestTitle = 60;
constexpr int mostTitles = 10;

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(LeaveQuestion)
};

QString shortened(const QString& title)
{
    const QString line = title.simplified();
    return line.size() > longestTitle ? line.left(longestTitle - 1) + u'…' : line;
}

QString questionAbout(const LeaveQuestion::Document& document, bool isRestart)
{
    const QString title = shortened(document.title);
    if (!document.isUnsaved)
        return isRestart ? Texts::tr("This page does not answer. Load it anew all the same?")
                         : Texts::tr("This page does not answer. Close it all the same?");
    return (isRestart ? Texts::tr("The changes in \"%1\" are not saved. Load it anew all the same?")
                      : Texts::tr("The changes in \"%1\" are not saved. Close it all the same?"))
        .arg(title);
}

QString listOf(const QVector<LeaveQuestion::Document>& documents)
{
    QStringList lines;
    for (const LeaveQuestion::Document& each : documents.mid(0, mostTitles))
        lines << (each.isUnsaved ? QStringLiteral("• %1") : Texts::tr("• %1 (does not answer)"))
                     .arg(shortened(each.title));
    if (documents.size() > mostTitles)
        lines << Texts::tr("and %1 more").arg(documents.size() - mostTitles);
    return lines.join(u'\n');
}

} // namespace

QMessageBox* LeaveQuestion::make(const QVector<Document>& documents, bool isRestart, QWidget* parent)
{
    const bool isOne = documents.size() == 1;
    const bool areAllSilent =
        std::none_of(documents.begin(), documents.end(), [](const Document& each) { return each.isUnsaved; });
    const QString text =
        isOne ? questionAbout(documents.constFirst(), isRestart)
              : Texts::tr("The changes in %1 documents are not saved. Close them all the same?")
                    .arg(documents.size());
    auto* box = new QMessageBox(QMessageBox::Warning, isRestart ? Texts::tr("Load anew") : Texts::tr("Close"),
                                text, QMessageBox::NoButton, parent);
    box->setObjectName(QStringLiteral("leaveQuestion"));
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    if (!isOne)
        box->setInformativeText(listOf(documents));
    else if (areAllSilent)
        box->setInformativeText(Texts::tr("What was typed last in \"%1\" may be lost.")
                                    .arg(shortened(documents.constFirst().title)));
    else
        box->setInformativeText(Texts::tr("They will be lost."));
    QPushButton* go = box->addButton(QMessageBox::Discard);
    go->setText(isRestart      ? Texts::tr("Load Without Saving")
                : areAllSilent ? Texts::tr("Close All the Same")
                               : Texts::tr("Close Without Saving"));
    box->setDefaultButton(box->addButton(QMessageBox::Cancel));
    box->setEscapeButton(QMessageBox::Cancel);
    return box;
}
