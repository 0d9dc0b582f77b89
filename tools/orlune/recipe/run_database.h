// Runs of recipes in an SQLite file: what they looked at, what they found, what is still to be
// done. docs/recipes.md tells the tables.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "orlune/recipe/picture_result.h"
#include "orlune/recipe/recipe.h"

struct sqlite3;
struct sqlite3_stmt;

namespace front {

// All functions throw std::runtime_error for what SQLite refuses.
class RunDatabase {
 public:
  // Makes the file and its tables where there are none.
  explicit RunDatabase(const std::string& file);
  ~RunDatabase();
  RunDatabase(const RunDatabase&) = delete;
  RunDatabase& operator=(const RunDatabase&) = delete;

  // Both make a run the one at hand. A run and the list of its pictures are there whole or not at
  // all.
  void Begin(const Recipe& recipe, const std::vector<std::string>& files);
  // The last run of the recipe, with the files that it does not have added; false where there is
  // none. Throws std::invalid_argument where the recipe's file was another one then.
  bool Resume(const Recipe& recipe, const std::vector<std::string>& files);

  // More pictures for it, behind the others.
  void Add(const std::vector<std::string>& files);

  // Pictures of the run at hand, in their order.
  std::vector<std::string> Files() const;
  std::vector<bool> Done() const;

  // A result is there whole or not at all, and only the first one of a picture.
  void Store(size_t picture, const PictureResult& result);
  PictureResult Stored(size_t picture) const;
  void Finish();

 private:
  using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

  void Execute(const std::string& sql) const;
  Statement Prepare(const char* sql) const;
  // One row; false where there are no more.
  bool Next(const Statement& statement) const;
  [[noreturn]] void Complain() const;
  void MakeTables();
  void InsertFiles(size_t first, const std::vector<std::string>& files);
  void StoreSteps(int64_t picture, const PictureResult& result);
  void LoadValues(int64_t step, StepResult* result) const;

  std::string file_;
  sqlite3* database_ = nullptr;
  int64_t run_ = 0;
};

}  // namespace front
