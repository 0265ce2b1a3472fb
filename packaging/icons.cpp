// zandrel-icons FOLDER: paints the icons that are installed, one PNG to a size.
#include <QDir>
#include <cstdio>

#include "shell/windows/emblem.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("zandrel-icons FOLDER\n", stderr);
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    for (const int side : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QString place = QStringLiteral("%1x%1/apps").arg(side);
        const QString path = folder.filePath(place + QStringLiteral("/zandrel.png"));
        if (!folder.mkpath(place) || !zandrel::IconImage(side).save(path, "PNG")) {
            std::fprintf(stderr, "%s cannot be written\n", path.toLocal8Bit().constData());
            return 1;
        }
    }
    return 0;
}
