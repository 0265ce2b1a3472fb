// A program that is there to be killed. "edit": opens base.dat of its folder and edits at random for ever,
// saying what it is about to have in its journal and when it has it. "recover": comes up as the program does
// after a crash, takes over what waits, and ends well.
#include <unistd.h>

#include <QCoreApplication>
#include <cstdio>
#include <random>
#include <string>

#include "files/datafile.h"
#include "files/imagesum.h"
#include "files/journal.h"
#include "image/accessors.h"
#include "image/history.h"
#include "image/image.h"
#include "shell/startstop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/desktop.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

// Out at once and as one piece.
void Say(char what) {
    char line[40];
    const int length =
        std::snprintf(line, sizeof line, "%c%016llx\n", what, static_cast<unsigned long long>(ImageSum()));
    if (write(STDOUT_FILENO, line, static_cast<std::size_t>(length)) != length) _exit(3);
}

// The steps that a user could take, each one gesture.
class Hands {
  public:
    explicit Hands(unsigned seed) : random_(seed) {
        for (std::size_t b = 0; b < ReadData.size(); ++b) {
            if (BlockWrite[b] && !ReadData[b].empty()) blocks_.push_back(b);
        }
    }

    void Do() {
        const int what = Below(10000);
        if (what < 3000) {
            SetCell(Below(2), 1 + Below(kMapSide), 1 + Below(kMapSide), Below(256));
        } else if (what < 4500) {
            FillRectangle();
        } else if (what < 6500) {
            const std::size_t block = blocks_[static_cast<std::size_t>(Below(int(blocks_.size())))];
            ReplaceBlock(block, Spoilt(ReadData[block]));
        } else if (what < 8000) {
            int map = 0;
            Undo(map);
        } else if (what < 9000) {
            int map = 0;
            Redo(map);
        } else if (what < 9980) {
            txtNotes.Text.insert(static_cast<std::size_t>(Below(int(txtNotes.Text.size()) + 1)), "Note\r\n");
            if (txtNotes.Text.size() > 600) txtNotes.Text.erase(0, 300);
            DataChanged = true;
            EditDone();
        } else if (what < 9990) {
            Say('s');
            SaveFile(ProgramFolder + "/saved.dat");
            Say('S');
        } else {
            Say('s');
            std::string path = ProgramFolder + "/base.dat";
            OpenFile(path, true);
            Say('S');
        }
    }

  private:
    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    ByteString Spoilt(ByteString bytes) {
        for (int k = 0; k < 5; ++k)
            bytes[static_cast<std::size_t>(Below(int(bytes.size())))] = char(Below(256));
        return bytes;
    }

    void FillRectangle() {
        const Gesture gesture("Fill", Below(3) == 0);
        const int map = Below(2), rows = 1 + Below(kMapSide), columns = 1 + Below(kMapSide);
        for (int row = 1; row <= rows; ++row) {
            for (int column = 1; column <= columns; ++column) SetCell(map, row, column, Below(256));
        }
    }

    std::mt19937 random_;
    std::vector<std::size_t> blocks_;
};

void Edit(unsigned seed) {
    std::string path = ProgramFolder + "/base.dat";
    OpenFile(path, true);
    if (VerName.empty()) _exit(4);
    if (AskRecovery()) _exit(5);
    BeginJournal();
    AfterGesture = [] {
        Say('?');
        WriteJournal();
        Say('!');
    };
    for (Hands hands(seed);;) hands.Do();
}

void Recover() {
    Desktop.MessageBox = [](const std::string&, Box) { return Answer::Yes; };
    const bool wanted = AskRecovery();
    Say(wanted && RecoverJournal() ? 'R' : 'N');
    BeginJournal();
    EndJournal();
}

}  // namespace
}  // namespace zandrel

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc != 4) return 2;
    zandrel::ProgramFolder = argv[2];
    zandrel::LoadDesign();
    zandrel::MainFormReady = true;
    zandrel::GridInit();
    zandrel::mnuCheckUnsavedData.Checked = false;
    if (argv[1] == std::string("edit")) zandrel::Edit(static_cast<unsigned>(std::stoul(argv[3])));
    zandrel::Recover();
    return 0;
}
