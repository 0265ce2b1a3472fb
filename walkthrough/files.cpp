#include "files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QTest>
#include <array>

#include "checks.h"
#include "files/datafile.h"
#include "image/image.h"
#include "link/port.h"
#include "link/transfers.h"
#include "person.h"
#include "steps.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

const QRect kPlace(20, 30, 770, 600);  // fits on the smallest screen
constexpr int kTab = 1;

QByteArray BytesOf(const QString& path) {
    QFile file(path);
    Require(file.open(QIODevice::ReadOnly), path + QStringLiteral(" is not there"));
    return file.readAll();
}

// What the build in force reads. Blocks of builds that were there before are saved, too, but not opened.
std::array<ByteString, 256> ImageInForce() {
    std::array<ByteString, 256> image;
    for (std::size_t b = 0; b < image.size(); ++b) {
        if (BlockRead[b]) image[b] = ReadData[b];
    }
    return image;
}

std::vector<QString> FileItem(const char* name) {
    return {QStringLiteral("mnuFile"), QLatin1String(name)};
}

QString SaveTheImage(QWidget& window, const QString& path) {
    const auto image = ReadData;
    ChooseFileBy(FileItem("mnuSaveAs"), path);
    Require(!DataChanged, QStringLiteral("it still counts as unsaved"));
    Require(window.windowTitle().endsWith(QStringLiteral("] - ") + QFileInfo(path).fileName()),
            QStringLiteral("the title is \"%1\"").arg(window.windowTitle()));
    int lines = 0;
    for (const QByteArray& line : BytesOf(path).split('\n')) {
        if (line.isEmpty() || line.startsWith("TT")) continue;
        const int block = line.left(2).toInt(nullptr, 16);
        const QByteArray bytes = QByteArray::fromHex(line.mid(2).trimmed());
        Require(bytes.toStdString() == image[static_cast<std::size_t>(block)],
                QStringLiteral("block %1 is not in the file as it is").arg(block, 2, 16));
        ++lines;
    }
    return QStringLiteral("%1 blocks, byte for byte").arg(lines);
}

QString OpenItAgain(QWidget& window, const QString& path) {
    const auto image = ImageInForce();
    ChooseTab(kFirstSettingsTab);
    TypeInto(QStringLiteral("txtSetting(120)"), QStringLiteral("6543"));
    Press(Qt::Key_Return);
    Require(DataChanged && ImageInForce() != image, QStringLiteral("nothing was changed"));
    Expect(QStringLiteral("You have made setting changes that have not been saved."), QStringLiteral("No"));
    ChooseFileBy(FileItem("mnuOpen"), path);
    Require(ImageInForce() == image && !DataChanged, QStringLiteral("the image is not the saved one"));
    Picture(QStringLiteral("opened"));
    return window.windowTitle();
}

QString OpenAnotherBuild(QWidget& window, const QString& own, const QString& other) {
    const std::string before = VerName + VerNumber;
    const QString caption = QString::fromStdString(SSTab1.TabCaption[0]);
    ChooseFileBy(FileItem("mnuOpen"), other);
    Require(VerName + VerNumber != before, QStringLiteral("the build did not change"));
    CountBlocksRead();
    ChooseTab(0);
    for (int row = 1; row <= kMapSide; ++row) {
        Require(CellOnScreen(0, row, row) == ExpectedCell(0, row, row),
                QStringLiteral("cell %1, %1 does not show what the file holds").arg(row));
    }
    Picture(QStringLiteral("other-build"));
    const QString title = window.windowTitle();
    // Back by the list of recent files.
    ChooseItem({QStringLiteral("mnuFile"), QStringLiteral("mnuRecentFile(1)")});
    Require(VerName + VerNumber == before && window.windowTitle().endsWith(QFileInfo(own).fileName()),
            QStringLiteral("the recent file did not come back"));
    return title;
}

QString OpenABrokenOne(QWidget& window, const QString& own, const QString& broken) {
    QByteArray bytes = BytesOf(own);
    const auto start = bytes.indexOf("\n8B");
    Require(start > 0, QStringLiteral("the file has no block 8B"));
    bytes.remove(start + 1, bytes.indexOf('\n', start + 1) - start);
    QFile file(broken);
    Require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(),
            QStringLiteral("can't write the broken file"));
    file.close();
    const auto image = ImageInForce();
    const QString title = window.windowTitle();
    Expect(QStringLiteral("File Format Error: Missing Data 8B"), QStringLiteral("OK"));
    ChooseFileBy(FileItem("mnuOpen"), broken);
    Require(ImageInForce() == image && window.windowTitle() == title,
            QStringLiteral("something of the broken file is left"));
    return QStringLiteral("refused; image and title are as before");
}

QString LeaveForTheNextRun(QWidget& window, const QString& folder, int port) {
    if (!mnuLoadDefaultAtStart.Checked) ChooseItem(FileItem("mnuLoadDefaultAtStart"));
    if (mnuCheckUnsavedData.Checked) ChooseItem(FileItem("mnuCheckUnsavedData"));
    ChooseFileBy(FileItem("mnuSaveAs"), folder + QStringLiteral("/default.dat"));
    if (!MSComm1.PortOpen()) ChoosePort(port);
    window.move(kPlace.topLeft());
    window.resize(kPlace.size());
    ChooseTab(kTab);
    QTest::qWait(20);
    return QStringLiteral("window, tab, port and ticks are set");
}

}  // namespace

void WorkWithFiles(QWidget& window, const TourSetting& setting, const QString& folder) {
    const QString own = folder + QStringLiteral("/tour car.dat");
    const QString other = folder + QStringLiteral("/other build.dat");
    Step(QStringLiteral("A file of another build"), [&] {
        ChoosePort(OldestBuild + 1);
        ReadEverything();
        return SaveTheImage(window, other);
    });
    Step(QStringLiteral("Save the image"), [&] {
        ChoosePort(setting.PortNumber);
        ReadEverything();
        return SaveTheImage(window, own);
    });
    Step(QStringLiteral("Open it again over a change"), [&] { return OpenItAgain(window, own); });
    Step(QStringLiteral("Open the file of another build"),
         [&] { return OpenAnotherBuild(window, own, other); });
    Step(QStringLiteral("Open a broken file"),
         [&] { return OpenABrokenOne(window, own, folder + QStringLiteral("/broken.dat")); });
    Step(QStringLiteral("Set up the next run"),
         [&] { return LeaveForTheNextRun(window, folder, setting.PortNumber); });
}

void ComeBackAsLeft(QWidget& window) {
    Step(QStringLiteral("The next run comes up as the last one was left"), [&window] {
        QTest::qWait(50);
        Picture(QStringLiteral("next-run"));
        Require(QRect(window.pos(), window.size()) == kPlace, QStringLiteral("the window stands elsewhere"));
        Require(SSTab1.Tab == kTab, QStringLiteral("another tab is in front"));
        Require(MSComm1.PortOpen() && mnuCom[0].Checked, QStringLiteral("the port is not open"));
        Require(mnuLoadDefaultAtStart.Checked && !mnuCheckUnsavedData.Checked,
                QStringLiteral("the ticks are others"));
        Require(window.windowTitle().endsWith(QStringLiteral("default.dat")),
                QStringLiteral("default.dat is not open"));
        CountBlocksRead();
        Require(window.close(), QStringLiteral("it did not close"));
        return QStringLiteral("window, tab, port, ticks and default.dat");
    });
}

}  // namespace zandrel
