#include "ncloudfiledialog/CfdDialog.h"
#include "ncloudfiledialog/NCfdInputBoxBase.h"
#include "shell/dialogs/DialogAnswers.h"
#include "shell/dialogs/UnattendedDialogs.h"
#include "support/HttpStub.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QLibrary>
#include <QTemporaryDir>
#include <QTreeView>

using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

TEST(CfdPlanOf, ReadsEveryFormOfFilter)
{
    EXPECT_THAT(cfd::parseFilters(s("usualfile(*.vs; *.vst; *.xlsb)")),
                ElementsAre(s("usualfile (*.vs *.vst *.xlsb)")));
    EXPECT_THAT(cfd::parseFilters(s(" |*.xxx")), ElementsAre(s("*.xxx (*.xxx)")));
    EXPECT_THAT(cfd::parseFilters(s("Pictures|*.png;*.jpg|All|*")),
                ElementsAre(s("Pictures (*.png *.jpg)"), s("All (*)")));
    EXPECT_THAT(cfd::parseFilters(s("*.a *.b")), ElementsAre(s("*.a *.b (*.a *.b)")));
    for (const char* none : {"", "|", "label()", "label|"})
        EXPECT_THAT(cfd::parseFilters(s(none)), ElementsAre()) << none;
}

/** The dialog of the library, answered as a user would. */
class CloudFileDialog : public testing::Test
{
protected:
    void SetUp() override
    {
        QDir(directory.path()).mkpath(s("in/a b"));
        QDir(directory.path()).mkpath(s("in/ü"));
        for (const char* name : {"in/1.vs", "in/2.txt", "in/say \"hi\".vs"}) {
            QFile file(path(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        }
    }

    QString path(const char* name) const { return directory.filePath(s(name)); }

    QStringList choose(QMap<QString, QString> properties, int mode, const QJsonValue& answer)
    {
        EXPECT_EQ(answers.add(mode == 0 && properties.isEmpty() ? s("saveFile") : s("file"), answer),
                  QString());
        properties.insert(s("InitialDir"), path("in/gone/deeper"));
        QLibrary library(s(DIALOG_LIBRARY));
        const auto create =
            reinterpret_cast<CreateCfdInputBoxProxyFunction>(library.resolve("CreateCfdInputBoxProxy"));
        EXPECT_TRUE(create) << qPrintable(library.errorString());
        NCfdInputBoxBase* dialog = create();
        dialog->init(0, 0, properties, {}, false);
        dialog->setPalette(QPalette());
        dialog->setLocalEnabled(isLocalEnabled);
        const QStringList chosen = dialog->exec(nullptr, mode, output);
        dialog->destroy();
        return chosen;
    }

    QTemporaryDir directory;
    shell::DialogAnswers answers;
    shell::UnattendedDialogs dialogs{answers};
    NCfdOutput output;
    bool isLocalEnabled = true;
};

const QMap<QString, QString> uploadFiles{{s("IsUpLoadFileDialog"), s("1")},
                                         {s("AllowMultiSel"), s("1")},
                                         {s("selectedFilter"), s("usualfile(*.vs; *.vst)")}};
const QMap<QString, QString> uploadFolders{
    {s("IsOpenDirDialog"), s("1")}, {s("AllowMultiSel"), s("1")}, {s("AllowSelRoot"), s("0")}};
const QMap<QString, QString> downloadTarget{
    {s("IsOpenSaveFileDialog"), s("1")}, {s("AllowMultiSel"), s("1")}, {s("AllowSelRoot"), s("1")}};

TEST_F(CloudFileDialog, AnswersWhatWasChosen)
{
    EXPECT_THAT(choose(uploadFiles, 1, QJsonArray{path("in/1.vs"), path("in/2.txt")}),
                ElementsAre(path("in/1.vs"), path("in/2.txt")))
        << "files of other kinds can be chosen too";
    EXPECT_EQ(output.directory, path("in")) << "the nearest directory that there is";
    EXPECT_THAT(choose(uploadFolders, 1, QJsonArray{path("in/a b"), path("in/ü")}),
                ElementsAre(path("in/a b"), path("in/ü")));
    EXPECT_THAT(choose(downloadTarget, 0, QJsonArray{s("/")}), ElementsAre(s("/")));
    EXPECT_THAT(choose({}, 0, path("in/1.vs")), ElementsAre(path("in/1.vs")));
}

TEST(CfdDialogOf, TakesTheRowsThatAreSelected)
{
    const QTemporaryDir directory;
    for (const char* folder : {"a b", "say \"hi\""})
        QDir(directory.path()).mkpath(s(folder));
    cfd::CfdPlan plan = cfd::makePlan(uploadFolders, 1);
    plan.directory = directory.path();
    cfd::CfdDialog dialog(plan);
    dialog.show();
    auto& view = *dialog.findChild<QTreeView*>(s("treeView"));
    ASSERT_TRUE(waitUntil([&] { return view.model()->rowCount(view.rootIndex()) == 2; }));
    view.selectAll();
    QMetaObject::invokeMethod(&dialog, "accept");
    EXPECT_THAT(dialog.chosen(),
                UnorderedElementsAre(directory.filePath(s("a b")), directory.filePath(s("say \"hi\""))));
}

TEST_F(CloudFileDialog, AnswersNothingForWhatCannotBeChosen)
{
    EXPECT_THAT(choose(uploadFiles, 1, QJsonArray()), ElementsAre()) << "cancelled";
    EXPECT_THAT(choose(uploadFiles, 1, QJsonArray{path("in/missing.vs")}), ElementsAre());
    EXPECT_THAT(choose(uploadFolders, 1, QJsonArray{path("in/1.vs")}), ElementsAre()) << "a file";
    EXPECT_THAT(choose(uploadFolders, 1, QJsonArray{s("/")}), ElementsAre()) << "the root";
    isLocalEnabled = false;
    EXPECT_THAT(choose(uploadFiles, 1, QJsonArray{path("in/1.vs")}), ElementsAre());
}

} // namespace
