#include "files/wholefile.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <filesystem>
#include <system_error>

namespace zandrel {

FileResult ReadWholeFile(const std::string& path, std::size_t limit, std::string& bytes) {
    const QString name = QString::fromStdString(path);
    // A folder, a pipe or a device opens, but is no file.
    if (!QFileInfo(name).isFile()) return FileResult::NotOpened;
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) return FileResult::NotOpened;
    const auto size = static_cast<std::size_t>(std::max<qint64>(0, file.size()));
    if (size > limit) return FileResult::TooLarge;
    // One more than there should be: what the system tells of a file that grows or is none on a disk is not
    // what comes.
    bytes.resize(size + 1);
    std::size_t taken = 0;
    for (;;) {
        const qint64 count = file.read(bytes.data() + taken, static_cast<qint64>(bytes.size() - taken));
        if (count < 0) return FileResult::Failed;
        if (count == 0) break;
        taken += static_cast<std::size_t>(count);
        if (taken > limit) return FileResult::TooLarge;
        if (taken == bytes.size()) bytes.resize(std::min(2 * taken, limit + 1));
    }
    bytes.resize(taken);
    return FileResult::Done;
}

bool FlushToDisk(int handle) {
#ifdef _WIN32
    return _commit(handle) == 0;
#else
    return fsync(handle) == 0;
#endif
}

bool WriteWholeFile(const std::string& path, std::string_view bytes) {
    QSaveFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::WriteOnly)) return false;
    const auto size = static_cast<qint64>(bytes.size());
    // A disk may find out only at the flush that it is full: the old file stays then.
    if (file.write(bytes.data(), size) != size || !file.flush() || !Flush(file.handle())) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

bool FolderOpens(const std::string& path) {
    if (path.empty()) return false;
    const auto folder = QFileInfo(QString::fromStdString(path)).filesystemFilePath();
    std::error_code refused;
    const std::filesystem::directory_iterator listed(folder, refused);
    return !refused && std::filesystem::is_directory(folder / ".", refused);
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
