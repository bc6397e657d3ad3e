#pragma once

#include "nvltcloudmodule/NVltCloudWidgets.h"

namespace vltcloud {

/** Opens the windows, which live on their own: one for each file, brought to the front when it is opened
 * again. */
class CloudWidgets final : public NVltCloudWidgets
{
public:
    explicit CloudWidgets(const QString& addOnName);

    /** Arguments that name no known window or no file open nothing; the log says so. */
    void openWindow(const QVariantMap& arguments) override;

private:
    const QString m_addOnName;
};

} // namespace vltcloud
