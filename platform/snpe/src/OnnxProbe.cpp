#include <dlfcn.h>
#include <fcntl.h>
#include <onnx/checker.h>
#include <onnx/onnx_pb.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "OnnxModel.h"

extern char** environ;

namespace snpe_stub::detail {
namespace {

constexpr const char* kProbe = "snpe_onnx_probe";

// The probe beside the library that holds this function.
std::string probePath() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&probeOnnxModel), &info) == 0 || info.dli_fname == nullptr) return kProbe;
  const std::string library = info.dli_fname;
  const size_t slash = library.rfind('/');
  return (slash == std::string::npos ? std::string(".") : library.substr(0, slash)) + "/" + kProbe;
}

// Sends the model on the probe's standard input and reads its one-line verdict from its output.
std::string converse(int socket, const std::string& bytes) {
  for (size_t sent = 0; sent < bytes.size();) {
    const ssize_t n = send(socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;  // the probe stopped reading: its verdict says why
    sent += static_cast<size_t>(n);
  }
  shutdown(socket, SHUT_WR);
  std::string reply;
  char chunk[4096];
  for (ssize_t n; (n = recv(socket, chunk, sizeof chunk, 0)) != 0;) {
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) break;
    reply.append(chunk, static_cast<size_t>(n));
  }
  return reply;
}

}  // namespace

bool probeOnnxModel(const std::string& bytes, const std::vector<std::string>& layers, std::string& error) {
  const std::string path = probePath();
  std::vector<char*> argv{const_cast<char*>(path.c_str())};
  for (const std::string& layer : layers) argv.push_back(const_cast<char*>(layer.c_str()));
  argv.push_back(nullptr);
  int sockets[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) {
    error = std::string("cannot talk to ") + kProbe + ": " + std::strerror(errno);
    return false;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, sockets[1], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, sockets[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t pid = 0;
  const int spawned = posix_spawn(&pid, path.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(sockets[1]);
  if (spawned != 0) {
    close(sockets[0]);
    error = "cannot start " + path + ": " + std::strerror(spawned);
    return false;
  }
  const std::string reply = converse(sockets[0], bytes);
  close(sockets[0]);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  if (reply == "ok\n") return true;
  if (reply.rfind("error: ", 0) == 0) {
    error = reply.substr(7, reply.find('\n') - 7);
  } else {
    error = "the engine crashed on this model (" +
            (WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                                 : "exit status " + std::to_string(WEXITSTATUS(status))) +
            ")";
  }
  return false;
}

std::string tryOnnxModel(const std::string& bytes, const std::vector<std::string>& layers) {
  std::string error;
  try {
    onnx::ModelProto proto;
    if (proto.ParseFromString(bytes)) onnx::checker::check_model(proto);
  } catch (const std::exception& e) {
    return std::string("not a valid ONNX model: ") + e.what();
  }
  std::shared_ptr<OnnxModel> model = describeOnnxModel(bytes, error);
  std::vector<Tensor> produced;
  if (model) buildOnnxEngine(model->source, layers, model->inputs, produced, error);
  return error;
}

}  // namespace snpe_stub::detail
