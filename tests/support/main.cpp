#include <gmock/gmock.h>

#include <QApplication>
#include <QStandardPaths>

int main(int argc, char** argv)
{
    // Unit tests draw nothing that is looked at: they run without a display unless told otherwise.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
