#include "shell/windows/filewindow.h"

#include <QPlainTextEdit>
#include <QtTest/QTest>
#include <cstdlib>
#include <fstream>

#include "files/datafile.h"
#include "files/journal.h"
#include "image/image.h"
#include "shell/startstop.h"
#include "simulator/simulator.h"
#include "tuning/mainform.h"

namespace zandrel {

FileWindow::FileWindow() {
    std::string ports;
    for (int n = 1; n <= 16; ++n) ports += (n > 1 ? "," : "") + std::to_string(n) + "=/nowhere";
    setenv("ZANDREL_PORTS", ports.c_str(), 1);
    frmMain_Load();
    mnuSaveAs_Click = SaveAs;
    Desktop.ChooseFile = [this](const FileChoice& choice) {
        Asked.push_back(choice);
        return Chosen;
    };
    Main.Mirror();
    Settle();
}

FileWindow::~FileWindow() {
    EndJournal();
    unsetenv("ZANDREL_PORTS");
}

std::string FileWindow::FileOf(const std::string& key, const std::string& name, const std::string& tail,
                               int without) const {
    powerfc::Options options;
    options.Version = key;
    const powerfc::Simulator device(options);
    const std::string path = Folder + "/" + name;
    std::ofstream file(path, std::ios::binary);
    for (const int code : device.BlockCodes()) {
        if (code == without) continue;
        const std::string bytes = device.BlockString(code);
        file << powerfc::ToHex({static_cast<std::uint8_t>(code)})
             << powerfc::ToHex(powerfc::Bytes(bytes.begin(), bytes.end())) << "\r\n";
    }
    file << tail;
    return path;
}

void FileWindow::OpenByMenu(const std::string& path) {
    Chosen = path;
    ClickItem("mnuFile", "mnuOpen");
}

void FileWindow::ChangeASetting() {
    ClickTab(6);
    auto* box = Member<QLineEdit>("txtSetting", 120);
    const QString other = QString::number(box->text().toInt() == 7000 ? 7100 : 7000);
    QTest::mouseClick(box, Qt::LeftButton);
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(box, other);
    QTest::keyClick(box, Qt::Key_Return);
    Settle();
    ASSERT_TRUE(DataChanged);
}

std::string FileWindow::Notes() {
    return Named<QPlainTextEdit>(QStringLiteral("txtNotes"))->toPlainText().toStdString();
}

}  // namespace zandrel
