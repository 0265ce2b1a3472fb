// The text of the settings store: sections of keys, one to a line. A line that says nothing to this program,
// a comment or one that was cut off, stays as it stands.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zandrel {

class IniFile {
  public:
    /// Takes a file's bytes in, whatever they are.
    explicit IniFile(std::string_view bytes = {});

    /// Value of a key; of several the last one. No value: the key is not there.
    std::optional<std::string> Find(const std::string& section, const std::string& key) const;

    /// Sets a key in its line, or in a new one at the end of its section.
    void Set(const std::string& section, const std::string& key, const std::string& value);

    /// The bytes of the file. Unchanged lines are the ones that were taken in.
    std::string Bytes() const;

  private:
    struct Entry {
        std::size_t Line;
        std::string Value;
    };
    void TakeLine(std::string_view line, std::string& section);

    std::vector<std::string> lines_;  // with their line ends
    std::map<std::pair<std::string, std::string>, Entry> entries_;
    std::map<std::string, std::size_t> lastLine_;  // of each section: behind it comes a new key
};

}  // namespace zandrel
