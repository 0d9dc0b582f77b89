// A program that is called for each picture with its verdict.
#include "orlune/recipe/verdict_call.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <vector>

#include "orlune/shared/numbers.h"

namespace front {
namespace {

// What the program starts with: nothing to read, its words among the messages, no file of this
// process, and signals as they usually are.
class Beginning {
 public:
  Beginning() {
    posix_spawn_file_actions_init(&files_);
    posix_spawn_file_actions_addopen(&files_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files_, STDERR_FILENO, STDOUT_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1);
    posix_spawnattr_init(&attributes_);
    sigset_t usual;
    sigemptyset(&usual);
    for (const int signal : {SIGPIPE, SIGINT, SIGTERM, SIGHUP, SIGIO}) sigaddset(&usual, signal);
    posix_spawnattr_setsigdefault(&attributes_, &usual);
    // A group of its own: it ends as a whole, and Ctrl-C is not for it.
    posix_spawnattr_setpgroup(&attributes_, 0);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  }
  ~Beginning() {
    posix_spawn_file_actions_destroy(&files_);
    posix_spawnattr_destroy(&attributes_);
  }
  Beginning(const Beginning&) = delete;
  Beginning& operator=(const Beginning&) = delete;

  const posix_spawn_file_actions_t* files() const { return &files_; }
  const posix_spawnattr_t* attributes() const { return &attributes_; }

 private:
  posix_spawn_file_actions_t files_;
  posix_spawnattr_t attributes_;
};

// As exec takes them; the texts have to live as long.
std::vector<char*> Pointers(std::vector<std::string>* texts) {
  std::vector<char*> pointers;
  for (std::string& text : *texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> EnvironmentOf(const PictureResult& result, const VerdictCall& call) {
  std::vector<std::string> variables = {
      "ORLUNE_VERDICT=" + std::string(NameOf(result.verdict)), "ORLUNE_FILE=" + result.file,
      "ORLUNE_REASON=" + result.reason, "ORLUNE_RECIPE=" + call.recipe};
  const auto isOurs = [&](const std::string& variable) {
    const std::string name = variable.substr(0, variable.find('=') + 1);
    return std::any_of(variables.begin(), variables.begin() + 4,
                       [&](const std::string& own) { return own.starts_with(name); });
  };
  for (char** variable = environ; *variable != nullptr; variable++) {
    if (!isOurs(*variable)) variables.emplace_back(*variable);
  }
  return variables;
}

// Whether it ended in this time. It is left to be waited for.
bool EndsWithin(pid_t process, Seconds limit) {
  constexpr int LONGEST_PAUSE = 16;  // milliseconds
  const Clock clock;
  for (int pause = 1;; pause = std::min(2 * pause, LONGEST_PAUSE)) {
    siginfo_t ended{};
    ::waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOHANG | WNOWAIT);
    if (ended.si_pid == process) return true;
    if (clock.Passed() > limit) return false;
    ::poll(nullptr, 0, pause);
  }
}

}  // namespace

std::string CallFor(const PictureResult& result, const VerdictCall& call) {
  std::vector<std::string> words = {call.program, std::string(NameOf(result.verdict)), result.file};
  std::vector<std::string> variables = EnvironmentOf(result, call);
  const Beginning beginning;
  pid_t process = 0;
  const int failure =
      ::posix_spawnp(&process, call.program.c_str(), beginning.files(), beginning.attributes(),
                     Pointers(&words).data(), Pointers(&variables).data());
  if (failure != 0) return std::string("cannot be called: ") + std::strerror(failure);
  const bool ended = call.limit.count() <= 0 || EndsWithin(process, call.limit);
  if (!ended) ::kill(-process, SIGKILL);
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  if (!ended) return "took longer than " + Short(call.limit.count()) + " seconds, and was ended";
  if (WIFSIGNALED(status)) return "was ended by signal " + std::to_string(WTERMSIG(status));
  const int code = WEXITSTATUS(status);
  return code == 0 ? "" : "ended with status " + std::to_string(code);
}

}  // namespace front
