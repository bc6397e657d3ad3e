#include "nrt/fileFilter.h"

#include <QHash>

namespace nrt {

FileFilter fileFilterType(const QString& suffix)
{
    static const QHash<QString, FileFilter> kinds = [] {
        QHash<QString, FileFilter> all;
        const auto add = [&all](FileFilter kind, const char* suffixes) {
            const QStringList names = QString::fromLatin1(suffixes).split(QLatin1Char(' '));
            for (const QString& name : names)
                all.insert(name, kind);
        };
        add(FileFilter::Text, "doc docx docm dot dotx dotm odt rtf txt");
        add(FileFilter::Presentation, "ppt pptx pptm pot potx pps ppsx odp");
        add(FileFilter::Spreadsheet, "xls xlsx xlsm xlsb xlt xltx xltm csv ods");
        add(FileFilter::Pdf, "pdf");
        return all;
    }();
    return kinds.value(suffix.toLower(), FileFilter::Other);
}

} // namespace nrt
