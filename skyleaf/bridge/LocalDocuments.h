#pragma once

#include <QString>
#include <QVariantMap>

class NHelioAppPage;
class NHelioMainWindow;

/** Documents that the shell has opened from this machine, and their coming and going. User-interface thread.
 */
namespace localdocuments {

/** Brings the open document of the file to the front. False when it is not open. */
bool activateOpenedDocument(const QString& fileId);
/** Closes the document of the file in a window. False when it is not open there or stays open. */
bool closeOpenedDocument(const NHelioMainWindow& window, const QString& fileId);
/**
 * Opens a file as a local document in the place of the page: the page leaves its window, which it does not
 * return to by itself. False, with nothing changed, when the shell cannot do that.
 */
bool openInCurrentTab(NHelioAppPage* page, const QVariantMap& parameters);
/** Hands the file to the shell to be downloaded and opened wherever the shell likes. */
void downloadAndOpen(const QVariantMap& parameters);
/** Tells the collector of cooperations of a step of an open. Nothing for an empty text. */
void recordOpenStep(const QString& fileId, const QString& step, quint64 epochMs);

} // namespace localdocuments
