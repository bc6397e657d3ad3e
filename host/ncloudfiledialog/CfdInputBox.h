#pragma once

#include "ncloudfiledialog/NCfdInputBoxBase.h"

#include <QPoint>

namespace cfd {

/**
 * A dialog over the places of the local machine; it has no places of the cloud, so it answers nothing when
 * local places are switched off. Ends itself in `destroy`.
 */
class CfdInputBox final : public NCfdInputBoxBase
{
public:
    void init(int left, int top, const QMap<QString, QString>& properties,
              const QMap<QString, QString>& options, bool isCloudFirst) override;
    void setPalette(const QPalette& palette) override;
    void setLocalEnabled(bool enabled) override;
    QStringList exec(QWidget* parent, int mode, NCfdOutput& output) override;
    void destroy() override;

private:
    QPoint m_position; //!< null: over the parent
    QMap<QString, QString> m_properties;
    QPalette m_palette;
    bool m_isLocalEnabled = true;
};

} // namespace cfd
