#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace cfd {

/** What a dialog lets the user do, as its properties say. */
struct CfdPlan
{
    enum class Choice { OpenFiles, SaveFile, Directories };

    Choice choice = Choice::OpenFiles;
    QString title;
    QString confirmLabel;   //!< empty: the toolkit's
    QString directory;      //!< where the dialog starts; exists
    QStringList filters;    //!< in the toolkit's form, "label (*.a *.b)"; never empty
    QString selectedFilter; //!< one of the filters
    QString source;         //!< who asks, for the log
    bool multiple = false;
    bool allowsRoot = true; //!< whether the root of the file system can be chosen
    bool showsRecent = false;
};

/**
 * Filters as the toolkit takes them, from any of the forms "label(*.a; *.b)", "label|*.a;*.b|label|*.c" and
 * "*.a;*.b". A blank label leaves the patterns alone. Empty for a text without patterns.
 */
QStringList parseFilters(const QString& text);

/**
 * The plan that properties and the mode flag (0: save, else open) describe. A directory that does not exist
 * becomes the nearest one above it that does, else the user's home. Properties that only tell of places that
 * this dialog does not have are not looked at.
 */
CfdPlan makePlan(const QMap<QString, QString>& properties, int mode);

} // namespace cfd
