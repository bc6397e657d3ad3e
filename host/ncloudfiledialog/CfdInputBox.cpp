#include "ncloudfiledialog/CfdInputBox.h"

#include "ncloudfiledialog/CfdDialog.h"

#include <QPointer>

namespace cfd {

void CfdInputBox::init(int left, int top, const QMap<QString, QString>& properties,
                       const QMap<QString, QString>& options, bool isCloudFirst)
{
    Q_UNUSED(options)
    Q_UNUSED(isCloudFirst)
    m_position = QPoint(left, top);
    m_properties = properties;
}

void CfdInputBox::setPalette(const QPalette& palette)
{
    m_palette = palette;
}

void CfdInputBox::setLocalEnabled(bool enabled)
{
    m_isLocalEnabled = enabled;
}

QStringList CfdInputBox::exec(QWidget* parent, int mode, NCfdOutput& output)
{
    if (!m_isLocalEnabled)
        return {};
    // The parent may be closed while the dialog is open, and takes the dialog with it.
    const QPointer<CfdDialog> dialog = new CfdDialog(makePlan(m_properties, mode), parent);
    dialog->setPalette(m_palette);
    if (!m_position.isNull())
        dialog->move(m_position);
    dialog->exec();
    if (!dialog)
        return {};
    output.directory = dialog->directory().absolutePath();
    QStringList chosen = dialog->chosen();
    delete dialog;
    return chosen;
}

void CfdInputBox::destroy()
{
    delete this;
}

} // namespace cfd
