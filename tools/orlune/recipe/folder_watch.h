// Files that come into a folder, each once it is whole.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace front {

class FolderWatch {
 public:
  // Throws std::system_error.
  explicit FolderWatch(const std::string& folder);
  ~FolderWatch();
  FolderWatch(const FolderWatch&) = delete;
  FolderWatch& operator=(const FolderWatch&) = delete;

  // Waits for files whose writer has closed them, or that were moved or linked there whole, and
  // gives their paths; at first those that are there already, but for what is being written. None
  // after a while, and after a signal. A file that is written again comes again; names that begin
  // with a dot never do. Throws std::system_error.
  std::vector<std::string> Next();

 private:
  void TakeAll(std::vector<std::string>* names);
  void TakeEvents(std::vector<std::string>* names);
  void TakeEvent(uint32_t mask, const std::string& name, std::vector<std::string>* names);
  void TakeMade(std::vector<std::string>* names);

  std::string folder_;
  int events_ = -1;
  bool begun_ = false;
  std::set<std::string> known_;  // names that have come
  // Names that are there, of files that may not be whole yet, and whether they were made meanwhile.
  std::map<std::string, bool> made_;
};

}  // namespace front
