#include "nheliostat/documents/DocumentViews.h"

#include "nheliostat/documents/DocumentKind.h"
#include "nheliostat/documents/FileCard.h"
#include "nheliostat/documents/PictureView.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

constexpr qint64 longestText = 1024LL * 1024;
constexpr qreal pageMargin = 28;

/** HTML that came from elsewhere: nothing is loaded for it, its links lead nowhere. */
class QuietTextBrowser final : public QTextBrowser
{
public:
    explicit QuietTextBrowser(QWidget* parent)
        : QTextBrowser(parent)
    {
        setOpenLinks(false);
        setUndoRedoEnabled(false);
    }
    QVariant loadResource(int, const QUrl&) override { return {}; }
};

QWidget* withNote(QWidget* view, bool isCut, QWidget* parent)
{
    auto* both = new QWidget(parent);
    auto* column = new QVBoxLayout(both);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(view, 1);
    if (isCut) {
        auto* note = new QLabel(
            QCoreApplication::translate("LocalDocumentPage", "Only the beginning of this file is shown."));
        note->setObjectName(QStringLiteral("documentNote"));
        note->setContentsMargins(24, 8, 24, 8);
        column->addWidget(note);
    }
    return both;
}

QWidget* textView(const QString& path, QWidget* parent)
{
    const TextStart start = readTextStart(path, longestText);
    auto* view = new QPlainTextEdit;
    view->setObjectName(QStringLiteral("documentText"));
    view->setReadOnly(true);
    view->setUndoRedoEnabled(false);
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view->document()->setDocumentMargin(pageMargin);
    view->setPlainText(start.text);
    return withNote(view, start.isCut, parent);
}

QWidget* richTextView(const QString& path, QWidget* parent)
{
    const TextStart start = readTextStart(path, longestText);
    auto* view = new QuietTextBrowser(nullptr);
    view->setObjectName(QStringLiteral("documentText"));
    view->document()->setDocumentMargin(pageMargin);
    view->setHtml(start.text);
    return withNote(view, start.isCut, parent);
}

} // namespace

QWidget* createDocumentView(const QString& path, const DocumentViewSetup& setup, QWidget* parent)
{
    switch (documentKindOf(path)) {
    case DocumentKind::Missing:
        return nullptr;
    case DocumentKind::Text:
        return textView(path, parent);
    case DocumentKind::RichText:
        return richTextView(path, parent);
    case DocumentKind::Image:
        return new PictureView(path, parent);
    case DocumentKind::Other:
        break;
    }
    return new FileCard(path, setup, parent);
}
