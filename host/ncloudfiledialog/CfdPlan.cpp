#include "ncloudfiledialog/CfdPlan.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace cfd {

namespace {

constexpr int saveMode = 0;

/** "label (*.a *.b)"; empty without patterns. */
QString filterOf(const QString& label, const QString& patterns)
{
    static const QRegularExpression separators(QStringLiteral("[;,\\s]+"));
    const QString all = patterns.split(separators, Qt::SkipEmptyParts).join(u' ');
    if (all.isEmpty())
        return {};
    const QString name = label.trimmed();
    return QStringLiteral("%1 (%2)").arg(name.isEmpty() ? all : name, all);
}

QString allFiles()
{
    return QCoreApplication::translate("CfdDialog", "All files") + QStringLiteral(" (*)");
}

QString startDirectory(const QString& wished)
{
    if (wished.isEmpty() || QDir::isRelativePath(wished))
        return QDir::homePath();
    QString directory = QDir::cleanPath(wished);
    while (!QFileInfo(directory).isDir()) {
        const QString above = QFileInfo(directory).path();
        if (above == directory)
            return QDir::homePath();
        directory = above;
    }
    return directory == QDir::rootPath() && QDir::cleanPath(wished) != directory ? QDir::homePath()
                                                                                 : directory;
}

} // namespace

QStringList parseFilters(const QString& text)
{
    QStringList filters;
    const QStringList parts = text.split(u'|');
    if (parts.size() > 1) {
        for (int i = 0; i + 1 < parts.size(); i += 2)
            filters.append(filterOf(parts.at(i), parts.at(i + 1)));
    } else {
        static const QRegularExpression labelled(QStringLiteral("^([^()]*)\\(([^()]*)\\)$"));
        const QRegularExpressionMatch match = labelled.match(text.trimmed());
        filters.append(match.hasMatch() ? filterOf(match.captured(1), match.captured(2))
                                        : filterOf(QString(), text));
    }
    filters.removeAll(QString());
    return filters;
}

CfdPlan makePlan(const QMap<QString, QString>& properties, int mode)
{
    const auto text = [&](const char* key) { return properties.value(QLatin1String(key)); };
    const auto isOn = [&](const char* key) { return text(key) == QLatin1String("1"); };

    CfdPlan plan;
    if (isOn("IsOpenDirDialog") || isOn("IsOpenSaveFileDialog"))
        plan.choice = CfdPlan::Choice::Directories;
    else if (mode == saveMode && !isOn("IsUpLoadFileDialog"))
        plan.choice = CfdPlan::Choice::SaveFile;
    plan.title = text("Title").isEmpty() ? text("AppName") : text("Title");
    plan.confirmLabel = text("ConfirmButton");
    plan.directory = startDirectory(text("InitialDir"));
    plan.source = text("BusinessFrom");
    // One target is all that a save or a download has.
    plan.multiple = isOn("AllowMultiSel") && mode != saveMode;
    plan.allowsRoot = text("AllowSelRoot") != QLatin1String("0");
    plan.showsRecent = isOn("IsShowRecentTab");

    const QStringList selected = parseFilters(text("selectedFilter"));
    plan.filters = selected + parseFilters(text("Filter")) + parseFilters(text("allFilter"));
    // A usual kind of file is an offer: the user can look at the others too.
    if (plan.filters.isEmpty() || !selected.isEmpty())
        plan.filters.append(allFiles());
    plan.filters.removeDuplicates();
    plan.selectedFilter = plan.filters.constFirst();
    return plan;
}

} // namespace cfd
