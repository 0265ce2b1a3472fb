// The Debian package: it is made, unpacked into a folder, and the program in it is started on a data file.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "files/datatext.h"
#include "simulator/simulator.h"
#include "support/cleanstate.h"

namespace zandrel {
namespace {

struct Outcome {
    int Code;
    std::string Output;
};

Outcome Execute(const QString& program, const QStringList& arguments,
                const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment()) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForFinished(90'000) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        return {-1, process.readAll().toStdString()};
    }
    return {process.exitCode(), process.readAll().toStdString()};
}

class Package : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        folder_ = new QTemporaryDir;
        // One who keeps everything private makes the same package.
        const mode_t usual = umask(077);
        const Outcome made = Execute(
            ZANDREL_CPACK,
            {"-G", "DEB", "--config", ZANDREL_BUILD "/CPackConfig.cmake", "-B", folder_->filePath("made")});
        umask(usual);
        ASSERT_EQ(made.Code, 0) << made.Output;
        const QStringList files = QDir(folder_->filePath("made")).entryList({"*.deb"});
        ASSERT_EQ(files.size(), 1) << made.Output;
        file_ = folder_->filePath("made/" + files.front());
        const Outcome unpacked = Execute("dpkg-deb", {"-x", file_, folder_->filePath("root")});
        ASSERT_EQ(unpacked.Code, 0) << unpacked.Output;
    }
    static void TearDownTestSuite() {
        delete folder_;
        folder_ = nullptr;
    }

    static QString InRoot(const QString& path) { return folder_->filePath("root/" + path); }
    static std::string Field(const QString& name) {
        return QString::fromStdString(Execute("dpkg-deb", {"-f", file_, name}).Output)
            .trimmed()
            .toStdString();
    }

    // Everything that the program remembers lies in the test's folder.
    static QProcessEnvironment Environment(const QString& title) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", folder_->path());
        environment.insert("ZANDREL_HOME", folder_->path());
        environment.insert("ZANDREL_SETTINGS", folder_->filePath("settings.ini"));
        environment.insert("ZANDREL_PORTS", "1=/nowhere");
        environment.insert("ZANDREL_WITNESS", folder_->filePath("seen"));
        environment.insert("ZANDREL_WITNESS_TITLE", title);
        environment.insert("QT_QPA_GENERIC_PLUGINS", "zandrelwitness");
        environment.insert("QT_PLUGIN_PATH", ZANDREL_BUILD "/tests/plugins");
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        return environment;
    }
    static std::string Seen() { return FileBytes(folder_->filePath("seen").toStdString()); }

    static inline QTemporaryDir* folder_ = nullptr;
    static inline QString file_;
};

TEST_F(Package, Control_NamesVersionMaintainerAndLibraries) {
    EXPECT_EQ(Field("Package"), "zandrel");
    EXPECT_EQ(Field("Version"), ZANDREL_VERSION);
    EXPECT_NE(Field("Maintainer").find('@'), std::string::npos);
    EXPECT_NE(Field("Description").find("Power-FC"), std::string::npos);
    const std::string needed = Field("Depends");
    for (const char* library :
         {"libc6", "libstdc++6", "libqt6core6", "libqt6widgets6", "libqt6serialport6"}) {
        EXPECT_NE(needed.find(library), std::string::npos) << library << " in " << needed;
    }
}

TEST_F(Package, Files_LieWhereADesktopLooks) {
    for (const char* path :
         {"usr/bin/zandrel", "usr/share/applications/zandrel.desktop", "usr/share/mime/packages/zandrel.xml",
          "usr/share/icons/hicolor/scalable/apps/zandrel.svg",
          "usr/share/icons/hicolor/16x16/apps/zandrel.png",
          "usr/share/icons/hicolor/256x256/apps/zandrel.png",
          "usr/share/metainfo/example.zandrel.zandrel.metainfo.xml", "usr/share/man/man1/zandrel.1.gz",
          "usr/share/doc/zandrel/README.md", "usr/share/doc/zandrel/COPYING",
          "usr/share/doc/zandrel/copyright", "usr/share/doc/zandrel/changelog.gz",
          "usr/share/doc/zandrel/docs/manual.md", "usr/share/doc/zandrel/docs/pictures/main.png"}) {
        EXPECT_GT(QFileInfo(InRoot(path)).size(), 0) << path;
    }
}

TEST_F(Package, Files_AreReadableByAllAndWritableByRootAlone) {
    const std::string listing = Execute("dpkg-deb", {"-c", file_}).Output;
    ASSERT_FALSE(listing.empty());
    for (const QString& line : QString::fromStdString(listing).split('\n', Qt::SkipEmptyParts)) {
        const bool executable = line.startsWith('d') || line.endsWith("/usr/bin/zandrel");
        EXPECT_TRUE(line.mid(1).startsWith(executable ? "rwxr-xr-x root/root" : "rw-r--r-- root/root"))
            << line.toStdString();
    }
}

TEST_F(Package, ChangeLog_IsOfThisVersion) {
    const Outcome text = Execute("gzip", {"-dc", InRoot("usr/share/doc/zandrel/changelog.gz")});
    EXPECT_EQ(text.Output.substr(0, text.Output.find(')')), "zandrel (" ZANDREL_VERSION);
}

TEST_F(Package, Program_StartsAndClosesCleanly) {
    const Outcome ended = Execute(InRoot("usr/bin/zandrel"), {}, Environment("Zandrel [ v] - "));
    EXPECT_EQ(ended.Code, 0) << ended.Output;
    EXPECT_EQ(Seen(), "title: Zandrel [ v] - \nicons: 6\ndesktop file: zandrel\n") << ended.Output;
}

TEST_F(Package, Program_OpensTheFileOnItsCommandLine) {
    powerfc::Options options;
    options.Version = "RB26DETT6.42";
    const powerfc::Simulator device(options);
    std::array<ByteString, 256> blocks;
    for (const int code : device.BlockCodes()) {
        blocks[static_cast<std::size_t>(code)] = device.BlockString(code);
    }
    const QString name = QString::fromUtf8("Jürgen's \"second\" ターボ map.dat");
    QFile data(folder_->filePath(name));
    ASSERT_TRUE(data.open(QIODevice::WriteOnly));
    data.write(QByteArray::fromStdString(FormatDataText(blocks, "")));
    data.close();

    const QString title = "Zandrel [RB26DETT v6.42] - " + name;
    const Outcome ended = Execute(InRoot("usr/bin/zandrel"), {data.fileName()}, Environment(title));
    EXPECT_EQ(ended.Code, 0) << ended.Output;
    EXPECT_EQ(Seen(), "title: " + title.toStdString() + "\nicons: 6\ndesktop file: zandrel\n")
        << ended.Output;
}

}  // namespace
}  // namespace zandrel
