#include "Programs.h"

#include "TemporaryFolder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocale>

#include <gmock/gmock.h>

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// A desktop of the test's own: two folders of data, the user's first, and one of configuration.
class Programs : public TemporaryFolder {
protected:
    Programs()
    {
        for (const char* name : {"user/applications", "system/applications", "config"})
            fs::create_directories(folder / name);
        ::setenv("XDG_DATA_HOME", (folder / "user").c_str(), 1);
        ::setenv("XDG_DATA_DIRS", (folder / "system").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
    }
    ~Programs() override
    {
        for (const char* name : {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME"})
            ::unsetenv(name);
    }
    void entry(const std::string& where, const std::string& lines) const
    {
        put(where, "[Desktop Action x]\nName=Wrong\n[Desktop Entry]\n" + lines);
    }
    static std::vector<std::string> names(const QString& mimeType)
    {
        std::vector<std::string> all;
        for (const Program& program : programsFor(mimeType))
            all.push_back(program.name.toStdString());
        return all;
    }
};

TEST_F(Programs, AreThoseThatTheUserCanHave)
{
    QLocale::setDefault(QLocale("de_AT"));
    put("system/applications/mimeinfo.cache",
        "[MIME Cache]\nimage/jpeg=a.desktop;b.desktop;gone.desktop;c.desktop;d.desktop;e.desktop;"
        "f.desktop;\nimage/png=a.desktop;\n");
    put("user/applications/mimeinfo.cache", "[MIME Cache]\nimage/jpeg=own.desktop;\n");
    put("config/mimeapps.list",
        "[Removed Associations]\nimage/jpeg=f.desktop\n"
        "[Default Applications]\nimage/jpeg=b.desktop;../../b.desktop\n");
    entry("system/applications/a.desktop", "Name=A\nName[de]=Ä\nExec=/bin/sh %f\n");
    entry("system/applications/b.desktop", "Name=B\nExec=\"/bin/sh\" -c x\nTryExec=/bin/sh\n");
    entry("system/applications/c.desktop", "Name=C\nExec=/bin/sh\nNoDisplay=true\n");
    entry("system/applications/d.desktop", "Name=D\nExec=/no/such/program %f\n");
    entry("system/applications/e.desktop", "Name=E\nExec=/bin/sh\n");
    entry("user/applications/e.desktop", "Name=E\nHidden=true\n"); // the user removed it
    entry("system/applications/f.desktop", "Name=F\nExec=/bin/sh\n");
    entry("user/applications/own.desktop", "Name=Own\nExec=/bin/sh\n");
    EXPECT_THAT(names("image/jpeg"), ElementsAre("B", "Own", "Ä"));
    EXPECT_THAT(names("image/png"), ElementsAre("Ä"));
    EXPECT_THAT(names("text/plain"), testing::IsEmpty());
    QLocale::setDefault(QLocale::c());
}

TEST_F(Programs, GetTheFileAsTheirCommandAsks)
{
    const fs::path said = folder / "said";
    put("say",
        "#!/bin/sh\nfor each; do printf '%s|' \"$each\"; done > '" + said.string() + ".part'\nmv '"
            + said.string() + ".part' '" + said.string() + "'\n");
    fs::permissions(folder / "say", fs::perms::owner_all);
    const QString say = QString::fromStdString((folder / "say").string());
    const struct {
        QString codes;
        const char* arguments;
    } cases[] = {
        {"%f", "/a b/$x '.jpg|"},
        {"--new %U %i", "--new|file:///a%20b/%24x%20%27.jpg|"},
        {"--as=%F \"100 %%\" %c", "--as=/a b/$x '.jpg|100 %|Say|"},
    };
    for (const auto& c : cases) {
        fs::remove(said);
        ASSERT_TRUE(openWith({"say.desktop", "Say", say + " " + c.codes}, "/a b/$x '.jpg"));
        QElapsedTimer waited;
        for (waited.start(); !fs::exists(said) && waited.elapsed() < 30'000;)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        EXPECT_EQ(content("said"), c.arguments);
    }
    EXPECT_FALSE(openWith({"x.desktop", "X", "/no/such/program %f"}, "/a"));
}

} // namespace
} // namespace orvane
