#include "nheliostat/documents/FileCard.h"

#include "nheliostat/NHelioSubPage.h"

#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

FileCard::FileCard(const QString& path, const DocumentViewSetup& setup, QWidget* parent)
    : QWidget(parent)
{
    constexpr QSize iconSize(64, 64);
    const QFileInfo file(path);
    setObjectName(QStringLiteral("documentCard"));
    auto* icon = new QLabel(this);
    icon->setPixmap(helioFileIcon(file.suffix()).pixmap(iconSize));
    auto* name = new QLabel(setup.title, this);
    name->setObjectName(QStringLiteral("documentHeading"));
    name->setTextFormat(Qt::PlainText);
    name->setWordWrap(true);
    name->setAlignment(Qt::AlignCenter);
    auto* size = new QLabel(QLocale().formattedDataSize(file.size()), this);
    size->setObjectName(QStringLiteral("documentDetail"));

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(48, 24, 48, 24);
    column->setSpacing(12);
    column->addStretch(2);
    column->addWidget(icon, 0, Qt::AlignHCenter);
    column->addWidget(name);
    column->addWidget(size, 0, Qt::AlignHCenter);
    if (setup.openWithSystem) {
        auto* open = new QPushButton(tr("Open with the system"), this);
        open->setObjectName(QStringLiteral("documentButton"));
        connect(open, &QPushButton::clicked, this, setup.openWithSystem);
        column->addSpacing(12);
        column->addWidget(open, 0, Qt::AlignHCenter);
    }
    column->addStretch(3);
}
