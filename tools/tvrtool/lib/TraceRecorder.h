// The trace of `tvrtool run --trace`, recorded while the frames run: the library's markers, each
// stamped by the thread that wrote it at the moment it wrote it (the recorder is the library's
// marker sink, TivoraTraceSink.h), the stages the processing reports inside each apply, and each
// frame's time as a counter.
//
// Recording allocates nothing: every event goes into room taken up front, and events beyond it
// are counted as dropped. Markers may come from any thread; each thread is named once, by the
// name the system has for it, so that it gets a track of its own.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "TivoraPlugin.h"
#include "TivoraTraceSink.h"
#include "TraceEvents.h"

namespace tvrtool {

class TraceRecorder {
 public:
  // Room for `capacity` events; installs the recorder as the library's marker sink.
  explicit TraceRecorder(size_t capacity);
  ~TraceRecorder();  // stops

  // Removes the sink: markers go to the library's file again. Call it once the processing's last
  // call has returned.
  void stop();

  // One apply on the calling thread, begun at `startNs` (CLOCK_MONOTONIC) and `applyNs` long, with
  // the stages the processing reported for it.
  void addFrame(int64_t startNs, int64_t applyNs, const tivora_stage_time_t* stages, size_t count);

  const TraceEvent* events() const { return mEvents.get(); }
  size_t count() const;
  size_t dropped() const { return mDropped.load(); }
  size_t rejected() const { return mRejected.load(); }  // garbled markers, left out
  int64_t pid() const { return mPid; }
  int64_t startNs() const { return mStartNs; }

  TraceRecorder(const TraceRecorder&) = delete;
  TraceRecorder& operator=(const TraceRecorder&) = delete;

 private:
  static void onMarker(void* context, const char* marker, size_t length);
  TraceEvent* claim(char phase, int64_t tid, int64_t timeNs);  // null when full
  int64_t namedThread();  // the calling thread's id, named in the trace on its first event

  std::unique_ptr<TraceEvent[]> mEvents;
  size_t mCapacity;
  std::atomic<size_t> mUsed{0};
  std::atomic<size_t> mDropped{0};
  std::atomic<size_t> mRejected{0};
  uint64_t mId;
  int64_t mPid;
  int64_t mStartNs;
  tivora::TraceMarkerSink mSink;
  bool mInstalled = false;
};

}  // namespace tvrtool
