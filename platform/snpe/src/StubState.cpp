#include "StubState.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace snpe_stub {
namespace {

constexpr int kKinds = static_cast<int>(Kind::TensorShape) + 1;
constexpr unsigned kCpuOnly = 1u << SNPE_RUNTIME_CPU;

struct Script {
  int remaining;  // negative: always
  std::string lastError;
};

struct Counters {
  int running = 0;
  int max = 0;
};

struct State {
  std::mutex lock;
  std::map<std::string, Script, std::less<>> failures;  // looked up by C name without a copy
  std::vector<Call> journal;
  Counters all;
  int maxOneNetwork = 0;
  std::map<const void*, Counters> networks;
};

struct Entry {
  Kind kind;
  unsigned long number;
  std::unique_ptr<detail::Object> object;
};

struct Registry {
  std::mutex lock;
  std::map<const void*, Entry> objects;
  unsigned long created[kKinds] = {};
  int live[kKinds] = {};
};

// Never destroyed: calls may arrive from static destructors of the program or other libraries.
State& state() {
  static State* s = new State;
  return *s;
}

Registry& registry() {
  static Registry* r = new Registry;
  return *r;
}

std::atomic<bool> gJournaling{true};
std::atomic<unsigned> gAvailable{kCpuOnly};
std::atomic<long long> gExecuteDelayUs{0};

thread_local std::string tLastError;

void raise(int& max, int value) { max = std::max(max, value); }

}  // namespace

void reset() {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  s.failures.clear();
  s.journal.clear();
  s.all.max = s.all.running;
  s.maxOneNetwork = 0;
  for (auto& [network, counters] : s.networks) {
    counters.max = counters.running;
    raise(s.maxOneNetwork, counters.running);
  }
  tLastError.clear();
  gJournaling = true;
  gAvailable = kCpuOnly;
  gExecuteDelayUs = 0;
}

void failCall(const std::string& name, int times) { failCall(name, times, name + ": scripted failure"); }

void failCall(const std::string& name, int times, const std::string& lastError) {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  if (times == 0) {
    s.failures.erase(name);
  } else {
    s.failures[name] = Script{times, lastError};
  }
}

void setLastError(const std::string& text) { tLastError = text; }

std::vector<Call> journal() {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  return s.journal;
}

void setJournaling(bool on) { gJournaling = on; }

void setRuntimeAvailable(Snpe_Runtime_t runtime, bool available) {
  const int bit = static_cast<int>(runtime);
  if (bit < 0 || bit >= 32) return;
  const unsigned mask = 1u << bit;
  if (available) {
    gAvailable |= mask;
  } else {
    gAvailable &= ~mask;
  }
}

const char* kindName(Kind kind) {
  switch (kind) {
    case Kind::Container:
      return "container";
    case Kind::RuntimeList:
      return "runtimelist";
    case Kind::StringList:
      return "stringlist";
    case Kind::PlatformConfig:
      return "platformconfig";
    case Kind::Builder:
      return "builder";
    case Kind::Network:
      return "snpe";
    case Kind::UserBuffer:
      return "userbuffer";
    case Kind::Encoding:
      return "encoding";
    case Kind::UserBufferMap:
      return "userbuffermap";
    case Kind::TensorShape:
      return "tensorshape";
  }
  return "?";
}

int liveCount(Kind kind) {
  Registry& r = registry();
  std::lock_guard<std::mutex> guard(r.lock);
  return r.live[static_cast<int>(kind)];
}

int liveCount() {
  Registry& r = registry();
  std::lock_guard<std::mutex> guard(r.lock);
  return static_cast<int>(r.objects.size());
}

std::string handleName(const void* handle) {
  if (handle == nullptr) return "null";
  {
    Registry& r = registry();
    std::lock_guard<std::mutex> guard(r.lock);
    auto it = r.objects.find(handle);
    if (it != r.objects.end()) return kindName(it->second.kind) + ("#" + std::to_string(it->second.number));
  }
  return detail::arg(detail::Memory{handle}) + "?";
}

void setExecuteDelay(std::chrono::microseconds delay) { gExecuteDelayUs = static_cast<long long>(delay.count()); }

int maxConcurrentExecutions() {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  return s.all.max;
}

int maxConcurrentExecutionsOfOneNetwork() {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  return s.maxOneNetwork;
}

int maxConcurrentExecutions(const void* network) {
  if (detail::lookup(network, Kind::Network) == nullptr) return -1;
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  auto it = s.networks.find(network);
  return it == s.networks.end() ? 0 : it->second.max;
}

namespace detail {

bool journaling() { return gJournaling; }

bool enter(const char* name, std::string args) {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  if (gJournaling) s.journal.push_back(Call{name, std::move(args)});
  auto it = s.failures.find(name);
  if (it == s.failures.end()) return false;
  tLastError = it->second.lastError;
  if (it->second.remaining > 0 && --it->second.remaining == 0) s.failures.erase(it);
  return true;
}

void setLastError(std::string text) { tLastError = std::move(text); }

const std::string& lastError() { return tLastError; }

void* adopt(std::unique_ptr<Object> object, Kind kind) {
  Registry& r = registry();
  void* handle = object.get();
  std::lock_guard<std::mutex> guard(r.lock);
  const int k = static_cast<int>(kind);
  r.objects.emplace(handle, Entry{kind, ++r.created[k], std::move(object)});
  ++r.live[k];
  return handle;
}

Object* lookup(const void* handle, Kind kind) {
  if (handle == nullptr) return nullptr;
  Registry& r = registry();
  std::lock_guard<std::mutex> guard(r.lock);
  auto it = r.objects.find(handle);
  return it != r.objects.end() && it->second.kind == kind ? it->second.object.get() : nullptr;
}

bool release(const void* handle, Kind kind) {
  std::unique_ptr<Object> doomed;  // destroyed after the lock is released
  Registry& r = registry();
  std::lock_guard<std::mutex> guard(r.lock);
  auto it = r.objects.find(handle);
  if (handle == nullptr || it == r.objects.end() || it->second.kind != kind) return false;
  doomed = std::move(it->second.object);
  r.objects.erase(it);
  --r.live[static_cast<int>(kind)];
  return true;
}

Snpe_ErrorCode_t deleteObject(const char* function, const void* handle, Kind kind) {
  if (enter(function, handle)) return SNPE_ERRORCODE_CAPI_DELETE_FAILURE;
  if (handle == nullptr) return fail(function, "null handle", SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  if (!release(handle, kind)) {
    return fail(function, handleName(handle) + " is not a live " + kindName(kind), SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  }
  return SNPE_SUCCESS;
}

bool runtimeAvailable(Snpe_Runtime_t runtime) {
  const int bit = static_cast<int>(runtime);
  return bit >= 0 && bit < 32 && (gAvailable.load() & (1u << bit)) != 0;
}

std::chrono::microseconds executeDelay() { return std::chrono::microseconds(gExecuteDelayUs.load()); }

void executionBegins(const void* network) {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  Counters& one = s.networks[network];
  raise(one.max, ++one.running);
  raise(s.maxOneNetwork, one.max);
  raise(s.all.max, ++s.all.running);
}

void executionEnds(const void* network) {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  --s.networks[network].running;
  --s.all.running;
}

void forgetNetwork(const void* network) {
  State& s = state();
  std::lock_guard<std::mutex> guard(s.lock);
  s.networks.erase(network);
}

}  // namespace detail
}  // namespace snpe_stub
