// Runs of recipes in an SQLite file.
#include "orlune/recipe/run_database.h"

#include <sqlite3.h>

#include <algorithm>
#include <set>
#include <stdexcept>

namespace front {
namespace {

constexpr int SCHEMA_VERSION = 1;
constexpr int PATIENCE = 10000;  // milliseconds that another program may keep the file

constexpr char TABLES[] = R"(
CREATE TABLE runs(
  id INTEGER PRIMARY KEY,
  recipe TEXT NOT NULL,
  recipe_text TEXT NOT NULL,
  program TEXT NOT NULL,
  started TEXT NOT NULL,
  finished TEXT);
CREATE TABLE pictures(
  id INTEGER PRIMARY KEY,
  run INTEGER NOT NULL REFERENCES runs(id),
  number INTEGER NOT NULL,
  file TEXT NOT NULL,
  verdict TEXT,
  reason TEXT,
  seconds REAL,
  recorded TEXT,
  thumbnail BLOB,
  UNIQUE(run, number));
CREATE TABLE steps(
  id INTEGER PRIMARY KEY,
  picture INTEGER NOT NULL REFERENCES pictures(id),
  name TEXT NOT NULL,
  verdict TEXT,
  reason TEXT);
CREATE INDEX steps_of_pictures ON steps(picture);
CREATE TABLE measurements(
  id INTEGER PRIMARY KEY,
  step INTEGER NOT NULL REFERENCES steps(id),
  object TEXT,
  name TEXT NOT NULL,
  value REAL,
  text TEXT,
  unit TEXT,
  verdict TEXT);
CREATE INDEX measurements_of_steps ON measurements(step);
CREATE VIEW results AS
  SELECT pictures.run, pictures.file, pictures.verdict AS picture_verdict, steps.name AS step,
         measurements.object, measurements.name, measurements.value, measurements.text,
         measurements.unit, measurements.verdict
  FROM measurements JOIN steps ON measurements.step = steps.id
  JOIN pictures ON steps.picture = pictures.id;
)";

// Texts that SQL leaves out where there is nothing to say.
void Bind(sqlite3_stmt* statement, int at, const std::string& text, bool optional = true) {
  if (optional && text.empty()) {
    sqlite3_bind_null(statement, at);
  } else {
    sqlite3_bind_text(statement, at, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
  }
}

void Bind(sqlite3_stmt* statement, int at, Verdict verdict) {
  Bind(statement, at, std::string(NameOf(verdict)));
}

std::string TextAt(sqlite3_stmt* statement, int column) {
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
  const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, column));
  return bytes == nullptr ? "" : std::string(bytes, size);
}

Verdict VerdictAt(sqlite3_stmt* statement, int column) {
  const std::string name = TextAt(statement, column);
  for (const Verdict verdict : {Verdict::Passed, Verdict::Failed, Verdict::Error}) {
    if (name == NameOf(verdict)) return verdict;
  }
  return Verdict::None;
}

// Takes back what was not finished.
class Transaction {
 public:
  explicit Transaction(sqlite3* database) : database_(database) {}
  ~Transaction() {
    if (!finished_) sqlite3_exec(database_, "ROLLBACK", nullptr, nullptr, nullptr);
  }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void Finished() { finished_ = true; }

 private:
  sqlite3* database_;
  bool finished_ = false;
};

}  // namespace

RunDatabase::RunDatabase(const std::string& file) : file_(file) {
  if (sqlite3_open(file.c_str(), &database_) != SQLITE_OK) {
    const std::string reason = database_ != nullptr ? sqlite3_errmsg(database_) : "no memory";
    sqlite3_close(database_);
    throw std::runtime_error(file + ": " + reason);
  }
  try {
    sqlite3_busy_timeout(database_, PATIENCE);
    // A power cut may take the last results with it, and they are made again; what is there stays
    // whole.
    Execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = ON");
    MakeTables();
  } catch (...) {
    sqlite3_close(database_);
    throw;
  }
}

RunDatabase::~RunDatabase() {
  sqlite3_close(database_);
}

void RunDatabase::Complain() const {
  throw std::runtime_error(file_ + ": " + sqlite3_errmsg(database_));
}

void RunDatabase::Execute(const std::string& sql) const {
  if (sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Complain();
}

RunDatabase::Statement RunDatabase::Prepare(const char* sql) const {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr) != SQLITE_OK) Complain();
  return {statement, sqlite3_finalize};
}

bool RunDatabase::Next(const Statement& statement) const {
  const int status = sqlite3_step(statement.get());
  if (status != SQLITE_ROW && status != SQLITE_DONE) Complain();
  return status == SQLITE_ROW;
}

void RunDatabase::MakeTables() {
  Execute("BEGIN IMMEDIATE");
  Transaction transaction(database_);
  const Statement version = Prepare("PRAGMA user_version");
  Next(version);
  const int found = sqlite3_column_int(version.get(), 0);
  const Statement tables = Prepare("SELECT count(*) FROM sqlite_master");
  Next(tables);
  const bool isEmpty = sqlite3_column_int(tables.get(), 0) == 0;
  if (found == 0 && isEmpty) {
    Execute(TABLES);
    Execute("PRAGMA user_version = " + std::to_string(SCHEMA_VERSION));
  } else if (found != SCHEMA_VERSION) {
    throw std::runtime_error(file_ + ": its tables are not those of version " +
                             std::to_string(SCHEMA_VERSION) + " of the records of runs");
  }
  sqlite3_reset(version.get());
  sqlite3_reset(tables.get());
  Execute("COMMIT");
  transaction.Finished();
}

void RunDatabase::InsertFiles(size_t first, const std::vector<std::string>& files) {
  const Statement insert = Prepare("INSERT INTO pictures(run, number, file) VALUES(?, ?, ?)");
  for (size_t i = 0; i < files.size(); i++) {
    sqlite3_bind_int64(insert.get(), 1, run_);
    sqlite3_bind_int64(insert.get(), 2, static_cast<int64_t>(first + i));
    Bind(insert.get(), 3, files[i], false);
    Next(insert);
    sqlite3_reset(insert.get());
  }
}

void RunDatabase::Begin(const Recipe& recipe, const std::vector<std::string>& files) {
  Execute("BEGIN IMMEDIATE");
  Transaction transaction(database_);
  const Statement insert = Prepare(
      "INSERT INTO runs(recipe, recipe_text, program, started) "
      "VALUES(?, ?, ?, strftime('%Y-%m-%dT%H:%M:%fZ'))");
  Bind(insert.get(), 1, recipe.name, false);
  Bind(insert.get(), 2, recipe.text, false);
  Bind(insert.get(), 3, std::string("orlune ") + ORLUNE_VERSION, false);
  Next(insert);
  run_ = sqlite3_last_insert_rowid(database_);
  InsertFiles(0, files);
  Execute("COMMIT");
  transaction.Finished();
}

bool RunDatabase::Resume(const Recipe& recipe, const std::vector<std::string>& files) {
  Execute("BEGIN IMMEDIATE");
  Transaction transaction(database_);
  const Statement last =
      Prepare("SELECT id, recipe_text FROM runs WHERE recipe = ? ORDER BY id DESC LIMIT 1");
  Bind(last.get(), 1, recipe.name, false);
  if (!Next(last)) return false;
  if (TextAt(last.get(), 1) != recipe.text) {
    throw std::invalid_argument("the recipe has changed since the run that would be resumed");
  }
  run_ = sqlite3_column_int64(last.get(), 0);
  sqlite3_reset(last.get());
  const std::vector<std::string> there = Files();
  const std::set<std::string> known(there.begin(), there.end());
  std::vector<std::string> more;
  std::copy_if(files.begin(), files.end(), std::back_inserter(more),
               [&](const std::string& file) { return !known.contains(file); });
  InsertFiles(there.size(), more);
  Execute("COMMIT");
  transaction.Finished();
  return true;
}

void RunDatabase::Add(const std::vector<std::string>& files) {
  Execute("BEGIN IMMEDIATE");
  Transaction transaction(database_);
  const Statement count = Prepare("SELECT count(*) FROM pictures WHERE run = ?");
  sqlite3_bind_int64(count.get(), 1, run_);
  Next(count);
  InsertFiles(static_cast<size_t>(sqlite3_column_int64(count.get(), 0)), files);
  sqlite3_reset(count.get());
  Execute("COMMIT");
  transaction.Finished();
}

std::vector<std::string> RunDatabase::Files() const {
  const Statement rows = Prepare("SELECT file FROM pictures WHERE run = ? ORDER BY number");
  sqlite3_bind_int64(rows.get(), 1, run_);
  std::vector<std::string> files;
  while (Next(rows)) files.push_back(TextAt(rows.get(), 0));
  return files;
}

std::vector<bool> RunDatabase::Done() const {
  const Statement rows =
      Prepare("SELECT verdict IS NOT NULL FROM pictures WHERE run = ? ORDER BY number");
  sqlite3_bind_int64(rows.get(), 1, run_);
  std::vector<bool> done;
  while (Next(rows)) done.push_back(sqlite3_column_int(rows.get(), 0) != 0);
  return done;
}

void RunDatabase::Store(size_t picture, const PictureResult& result) {
  Execute("BEGIN IMMEDIATE");
  Transaction transaction(database_);
  const Statement update = Prepare(
      "UPDATE pictures SET verdict = ?, reason = ?, seconds = ?, thumbnail = ?, "
      "recorded = strftime('%Y-%m-%dT%H:%M:%fZ') "
      "WHERE run = ? AND number = ? AND verdict IS NULL RETURNING id");
  Bind(update.get(), 1, result.verdict);
  Bind(update.get(), 2, result.reason);
  sqlite3_bind_double(update.get(), 3, result.seconds);
  if (!result.thumbnail.empty()) {
    sqlite3_bind_blob(update.get(), 4, result.thumbnail.data(),
                      static_cast<int>(result.thumbnail.size()), SQLITE_TRANSIENT);
  }
  sqlite3_bind_int64(update.get(), 5, run_);
  sqlite3_bind_int64(update.get(), 6, static_cast<int64_t>(picture));
  if (!Next(update)) return;  // it has one
  const int64_t id = sqlite3_column_int64(update.get(), 0);
  sqlite3_reset(update.get());
  StoreSteps(id, result);
  Execute("COMMIT");
  transaction.Finished();
}

void RunDatabase::StoreSteps(int64_t picture, const PictureResult& result) {
  const Statement step =
      Prepare("INSERT INTO steps(picture, name, verdict, reason) VALUES(?, ?, ?, ?)");
  const Statement row = Prepare(
      "INSERT INTO measurements(step, object, name, value, text, unit, verdict) "
      "VALUES(?, ?, ?, ?, ?, ?, ?)");
  for (const StepResult& each : result.steps) {
    sqlite3_bind_int64(step.get(), 1, picture);
    Bind(step.get(), 2, each.step, false);
    Bind(step.get(), 3, each.verdict);
    Bind(step.get(), 4, each.reason);
    Next(step);
    sqlite3_reset(step.get());
    const int64_t id = sqlite3_last_insert_rowid(database_);
    for (const StepValue& value : each.values) {
      sqlite3_bind_int64(row.get(), 1, id);
      Bind(row.get(), 2, value.object);
      Bind(row.get(), 3, value.name, false);
      if (value.number) {
        sqlite3_bind_double(row.get(), 4, *value.number);
      } else {
        sqlite3_bind_null(row.get(), 4);
      }
      Bind(row.get(), 5, value.text);
      Bind(row.get(), 6, value.unit);
      Bind(row.get(), 7, value.verdict);
      Next(row);
      sqlite3_reset(row.get());
    }
  }
}

PictureResult RunDatabase::Stored(size_t picture) const {
  PictureResult result;
  const Statement row = Prepare(
      "SELECT id, file, verdict, reason, seconds, thumbnail FROM pictures "
      "WHERE run = ? AND number = ?");
  sqlite3_bind_int64(row.get(), 1, run_);
  sqlite3_bind_int64(row.get(), 2, static_cast<int64_t>(picture));
  if (!Next(row)) Complain();
  result.file = TextAt(row.get(), 1);
  result.verdict = VerdictAt(row.get(), 2);
  result.reason = TextAt(row.get(), 3);
  result.seconds = sqlite3_column_double(row.get(), 4);
  result.thumbnail = TextAt(row.get(), 5);
  const Statement steps =
      Prepare("SELECT id, name, verdict, reason FROM steps WHERE picture = ? ORDER BY id");
  sqlite3_bind_int64(steps.get(), 1, sqlite3_column_int64(row.get(), 0));
  while (Next(steps)) {
    result.steps.push_back({.step = TextAt(steps.get(), 1),
                            .verdict = VerdictAt(steps.get(), 2),
                            .reason = TextAt(steps.get(), 3),
                            .values = {}});
    LoadValues(sqlite3_column_int64(steps.get(), 0), &result.steps.back());
  }
  return result;
}

void RunDatabase::LoadValues(int64_t step, StepResult* result) const {
  const Statement rows = Prepare(
      "SELECT object, name, value, text, unit, verdict FROM measurements WHERE step = ? "
      "ORDER BY id");
  sqlite3_bind_int64(rows.get(), 1, step);
  while (Next(rows)) {
    StepValue value{.object = TextAt(rows.get(), 0),
                    .name = TextAt(rows.get(), 1),
                    .number = {},
                    .text = TextAt(rows.get(), 3),
                    .unit = TextAt(rows.get(), 4),
                    .verdict = VerdictAt(rows.get(), 5)};
    if (sqlite3_column_type(rows.get(), 2) != SQLITE_NULL) {
      value.number = sqlite3_column_double(rows.get(), 2);
    }
    result->values.push_back(value);
  }
}

void RunDatabase::Finish() {
  const Statement update = Prepare(
      "UPDATE runs SET finished = strftime('%Y-%m-%dT%H:%M:%fZ') "
      "WHERE id = ? AND finished IS NULL");
  sqlite3_bind_int64(update.get(), 1, run_);
  Next(update);
}

}  // namespace front
