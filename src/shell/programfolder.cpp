#include "shell/programfolder.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

namespace zandrel {

bool TakesFiles(const std::string& folder) {
    const QDir dir(QString::fromStdString(folder));
    if (folder.empty() || !dir.exists()) return false;
    QTemporaryFile trial(dir.filePath(QStringLiteral(".zandrel-XXXXXX")));
    return trial.open();
}

std::string ChooseProgramFolder(const std::string& home, const std::string& executableFolder,
                                const std::string& userFolder) {
    if (!home.empty()) {
        QDir().mkpath(QString::fromStdString(home));
        return home;
    }
    if (TakesFiles(executableFolder)) return executableFolder;
    QDir().mkpath(QString::fromStdString(userFolder));
    return userFolder;
}

std::string CommandLinePath(const std::string& words) {
    QString path = QString::fromStdString(words);
    // A file may be called so, quotes and all.
    if (const QFileInfo named(path); named.isRelative() && named.isFile()) {
        return named.absoluteFilePath().toStdString();
    }
    const QLatin1Char quote('"');
    if (path.size() >= 2 && path.startsWith(quote) && path.endsWith(quote))
        path = path.mid(1, path.size() - 2);
    const QFileInfo file(path);
    return file.isRelative() && file.isFile() ? file.absoluteFilePath().toStdString() : words;
}

}  // namespace zandrel
