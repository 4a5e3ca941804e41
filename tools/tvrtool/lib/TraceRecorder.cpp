#include "TraceRecorder.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>

#include "MonotonicClock.h"

namespace tvrtool {

namespace {

std::atomic<uint64_t> gRecorders{0};
thread_local uint64_t tNamedFor = 0;  // the recorder that has this thread's name

}  // namespace

TraceRecorder::TraceRecorder(size_t capacity)
    : mEvents(new TraceEvent[capacity]),  // left unwritten: untouched room costs no memory
      mCapacity(capacity),
      mId(++gRecorders),
      mPid(getpid()),
      mStartNs(monotonicNanoseconds()),
      mSink{&TraceRecorder::onMarker, this} {
  tivora::setTraceMarkerSink(&mSink);
  mInstalled = true;
}

TraceRecorder::~TraceRecorder() { stop(); }

void TraceRecorder::stop() {
  if (mInstalled) tivora::setTraceMarkerSink(nullptr);
  mInstalled = false;
}

size_t TraceRecorder::count() const { return std::min(mUsed.load(), mCapacity); }

TraceEvent* TraceRecorder::claim(char phase, int64_t tid, int64_t timeNs) {
  const size_t index = mUsed.fetch_add(1);
  if (index >= mCapacity) {
    ++mDropped;
    return nullptr;
  }
  TraceEvent& event = mEvents[index];
  event.phase = phase;
  event.pid = mPid;
  event.tid = tid;
  event.timeNs = timeNs;
  event.durationNs = 0;
  event.value = 0;
  event.name[0] = '\0';
  return &event;
}

int64_t TraceRecorder::namedThread() {
  const int64_t tid = gettid();
  if (tNamedFor != mId) {
    tNamedFor = mId;
    char name[17] = {};
    prctl(PR_GET_NAME, name);
    if (TraceEvent* event = claim('M', tid, mStartNs)) event->setName(name);
  }
  return tid;
}

void TraceRecorder::onMarker(void* context, const char* marker, size_t length) {
  const int64_t now = monotonicNanoseconds();  // first: the moment the library wrote the marker
  auto& self = *static_cast<TraceRecorder*>(context);
  char phase = 0;
  int64_t pid = 0;
  std::string_view name;
  if (!readMarker({marker, length}, phase, pid, name)) {
    ++self.mRejected;
    return;
  }
  if (TraceEvent* event = self.claim(phase, self.namedThread(), now)) {
    event->pid = pid;
    event->setName(name);
  }
}

void TraceRecorder::addFrame(int64_t startNs, int64_t applyNs, const tivora_stage_time_t* stages, size_t count) {
  const int64_t tid = namedThread();
  if (TraceEvent* event = claim('C', tid, startNs)) {
    event->value = static_cast<double>(applyNs) / 1e6;
    event->setName("frame time");
  }
  for (size_t i = 0; i < count; ++i) {
    if (TraceEvent* event = claim('X', tid, stages[i].start_ns)) {
      event->durationNs = stages[i].duration_ns;
      event->setName(stages[i].name != nullptr ? stages[i].name : "?");
    }
  }
}

}  // namespace tvrtool
