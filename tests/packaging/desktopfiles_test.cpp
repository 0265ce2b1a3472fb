// What the desktop is told of the program: the type of its files, its entry, its icon.
#include <gtest/gtest.h>

#include <QMimeDatabase>
#include <QXmlStreamReader>

#include "files/datatext.h"
#include "image/catalogue.h"
#include "image/image.h"
#include "shell/windows/emblem.h"
#include "support/cleanstate.h"

namespace zandrel {
namespace {

constexpr char kType[] = "application/x-zandrel-tuning";
const std::string kPackaging = ZANDREL_PACKAGING;

class MimeEntry : public CleanState {
  protected:
    // Before the type database is looked at for the first time.
    static void SetUpTestSuite() {
        setenv("XDG_DATA_DIRS", (kPackaging + ":/usr/local/share:/usr/share").c_str(), 1);
        setenv("XDG_DATA_HOME", "/nowhere", 1);
    }

    static std::string TypeOf(const std::string& name, const std::string& bytes) {
        const QByteArray data = QByteArray::fromStdString(bytes);
        return QMimeDatabase()
            .mimeTypeForFileNameAndData(QString::fromStdString(name), data)
            .name()
            .toStdString();
    }

    // As much as the desktops look at.
    static std::string FileOf(const Build& build) {
        ApplyBuild(std::string(build.Key));
        std::array<ByteString, 256> blocks;
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            if (BlockRead[i]) blocks[i].assign(BlockLength[i], '\x5A');
        }
        return FormatDataText(blocks, "Notes").substr(0, 4096);
    }
};

TEST_F(MimeEntry, FilesOfAllBuilds_AreKnownByWhatTheyHold) {
    for (const Build& build : Builds()) {
        const std::string file = FileOf(build);
        EXPECT_EQ(TypeOf("tune.dat", file), kType) << build.Key;
        EXPECT_EQ(TypeOf("TUNE.DAT", file), kType) << build.Key;
        std::string bare;
        for (const char c : file) {
            if (c != '\r') bare += c;
        }
        EXPECT_EQ(TypeOf("tune.dat", bare), kType) << build.Key << ", lines that end with LF";
    }
}

TEST_F(MimeEntry, FilesOfOthers_AreLeftAlone) {
    const std::string file = FileOf(*FindBuild("RB26DETT6.42"));
    const std::string strangers[] = {
        "",
        "time;speed\r\n0;0\r\n",
        std::string(4096, '\0'),
        std::string(4096, '0'),
        "TTnotes alone\r\n",
        file.substr(1),
        ' ' + file,
        file.substr(0, file.find('\r')),
        file.substr(0, 2) + "00" + file.substr(2),
        file.substr(file.find('\n') + 1),
    };
    for (const std::string& stranger : strangers) EXPECT_NE(TypeOf("x.dat", stranger), kType) << stranger;
    // An ending that has a type of its own keeps it.
    EXPECT_NE(TypeOf("x.html", file), kType);
}

TEST_F(MimeEntry, IsText_SoThatEditorsAreOffered) {
    EXPECT_TRUE(QMimeDatabase().mimeTypeForName(kType).inherits("text/plain"));
}

TEST_F(MimeEntry, DesktopFile_OpensThatType) {
    const std::string entry = FileBytes(kPackaging + "/zandrel.desktop");
    EXPECT_NE(entry.find(std::string("\nMimeType=") + kType + ";\n"), entry.npos);
    EXPECT_NE(entry.find("\nExec=zandrel %f\n"), entry.npos);
}

// Points in the middle of the cells of the drawing, with their colours.
std::vector<std::pair<QPointF, QColor>> CellsOf(const QByteArray& drawing) {
    std::vector<std::pair<QPointF, QColor>> cells;
    QXmlStreamReader reader(drawing);
    QColor fill;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) continue;
        const auto attributes = reader.attributes();
        const auto number = [&](const char* name) {
            return attributes.value(QLatin1String(name)).toDouble();
        };
        if (reader.name() == QLatin1String("g")) fill = QColor(attributes.value("fill").toString());
        if (reader.name() == QLatin1String("rect") && attributes.hasAttribute("x")) {
            cells.emplace_back(QPointF(number("x") + number("width") / 2, number("y") + number("height") / 2),
                               fill);
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return cells;
}

TEST(Icon, Drawing_HasTheColoursThatArePainted) {
    const QImage painted = IconImage(128);
    const auto cells = CellsOf(QByteArray::fromStdString(FileBytes(kPackaging + "/zandrel.svg")));
    ASSERT_EQ(cells.size(), 25U);
    int same = 0;
    for (const auto& [place, colour] : cells) {
        const QColor pixel = painted.pixelColor(place.toPoint());
        const auto near = [](int a, int b) { return std::abs(a - b) <= 2; };
        same += near(pixel.red(), colour.red()) && near(pixel.green(), colour.green()) &&
                near(pixel.blue(), colour.blue());
    }
    // The pull covers the middle of some.
    EXPECT_GE(same, 18);
    EXPECT_LT(same, 25);
}

TEST(Icon, EachSize_IsATileWithClearCorners) {
    for (const int side : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QImage icon = IconImage(side);
        ASSERT_EQ(icon.size(), QSize(side, side));
        EXPECT_LT(icon.pixelColor(0, 0).alpha(), 128) << side;
        EXPECT_EQ(icon.pixelColor(side / 2, 0).alpha(), 255) << side;
        // Lean below on the left, rich above on the right.
        int lean = 0, rich = 0;
        for (int i = 0; i < side / 2; ++i) {
            for (int j = 0; j < side / 2; ++j) {
                const QColor below = icon.pixelColor(i, side - 1 - j),
                             above = icon.pixelColor(side - 1 - i, j);
                lean = std::max(lean, below.green() - below.red());
                rich = std::max(rich, above.red() - above.green());
            }
        }
        EXPECT_GT(lean, 50) << side;
        EXPECT_GT(rich, 50) << side;
    }
}

}  // namespace
}  // namespace zandrel
