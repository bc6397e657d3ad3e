#include "ncloudfiledialog/CfdInputBox.h"

extern "C" Q_DECL_EXPORT NCfdInputBoxBase* CreateCfdInputBoxProxy();

NCfdInputBoxBase* CreateCfdInputBoxProxy()
{
    return new cfd::CfdInputBox;
}
