// A file that its run holds as long as it lives: so runs tell what a dead one left from what is in use, and two runs never
// share one.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>
#include <vector>

namespace quillon::account {

class HeldFile {
 public:
  // Makes a file and holds it. Its path is `stem`, eight hexadecimal digits that no other file has, and `suffix`. Others
  // may write and read it, as this run does by its path. Throws std::system_error when the folder takes no new file.
  HeldFile(const std::filesystem::path& stem, std::string_view suffix);
  HeldFile(HeldFile&&) noexcept;
  HeldFile& operator=(HeldFile&&) = delete;
  // Lets go of the file, which stays.
  ~HeldFile();

  // The files with such a path that no run holds and that nothing has been written to for `age`. They are held by this run
  // now.
  static std::vector<HeldFile> left(const std::filesystem::path& stem, std::string_view suffix,
                                    std::chrono::seconds age);

  const std::filesystem::path& path() const { return path_; }
  // Gives the file, which the run has closed by now, another name in the same folder. A file that has this name is replaced
  // in the same step, or stays and makes it an error.
  enum class Taken { replaced, refused };
  std::error_code rename(const std::filesystem::path& name, Taken taken) noexcept;
  // Lets go of the file and removes it; nothing when it has another name by now.
  void remove() noexcept;

 private:
  class Hold;

  HeldFile(std::filesystem::path path, std::unique_ptr<Hold> hold) noexcept;

  std::filesystem::path path_;
  std::unique_ptr<Hold> hold_;
};

}  // namespace quillon::account
