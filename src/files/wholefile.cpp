#include "files/wholefile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace zandrel {

FileResult ReadWholeFile(const std::string& path, std::size_t limit, std::string& bytes) {
    const QString name = QString::fromStdString(path);
    // A folder, a pipe or a device opens, but is no file.
    if (!QFileInfo(name).isFile()) return FileResult::NotOpened;
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) return FileResult::NotOpened;
    if (file.size() < 0 || static_cast<std::size_t>(file.size()) > limit) return FileResult::TooLarge;
    bytes.resize(static_cast<std::size_t>(file.size()));
    const qint64 count = file.read(bytes.data(), file.size());
    return count == static_cast<qint64>(bytes.size()) ? FileResult::Done : FileResult::Failed;
}

bool WriteWholeFile(const std::string& path, std::string_view bytes) {
    QSaveFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::WriteOnly)) return false;
    const auto size = static_cast<qint64>(bytes.size());
    if (file.write(bytes.data(), size) != size) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

bool IsSeparator(char c) {
#ifdef _WIN32
    return c == '/' || c == '\\';
#else
    return c == '/';
#endif
}

std::string FileTitleOf(const std::string& path) {
    for (std::size_t i = path.size(); i > 0; --i) {
        if (IsSeparator(path[i - 1])) return path.substr(i);
    }
    return path;
}

std::string FolderOf(const std::string& path, const std::string& title) {
    return path.substr(0, path.find(title));
}

}  // namespace zandrel
