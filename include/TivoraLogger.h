// The library's process-wide logger, writing to the Android log.
//
// Every record goes to the Android log with the tag "TVR" and reads
//     "<level tag> <class>.<function>: <message>"      e.g. "[TVR ERROR] MyProcessing.setup: ..."
//
// Filtering is the caller's job: test isLogEnabled() before building anything, then call logPrint().
// A suppressed message therefore costs one comparison and formats nothing.
//
// Configuration: on first use the logger reads the optional file "VEXA_TVR.dat" from
// "/data/vendor/camera", else "/data/local", once per process:
//     TivoraLogLevel=V|D|I|W|E   threshold (first character of the value counts; default I)
//     TivoraTrace=true|enable    switches ftrace markers on (see ScopedTrace.h); never off again
//     SNPELogLevel=V|D|I|W|E     the NN runtime's own log level (default E)
// Spaces are removed from every line before it is read; there are no comments; the later of two
// lines with the same key wins. The directory where the file was found becomes the data directory
// (getDataDir), where the debug support looks for its own configuration.
//
// Threads: any thread may log. getInstance() is serialised; logPrint, isLogEnabled, getLogLevel,
// setLogLevel and getDataDir take no lock.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "tvr_export.h"

namespace tivora {

class TVR_EXPORT TivoraLogger {
 public:
  // Levels, higher is more severe. Each pairs with an Android priority (VERBOSE 2 ... ERROR 6).
  enum tvr_loglevel_t : int32_t {
    TVR_LOG_VERBOSE = 0,
    TVR_LOG_DEBUG = 1,
    TVR_LOG_INFO = 2,
    TVR_LOG_WARN = 3,
    TVR_LOG_ERROR = 4,
  };

 private:
  std::string mLogTag;                                 // Android log tag, "TVR"
  std::string mConfigDir;                              // first directory searched for the configuration file
  std::string mConfigDirFallback;                      // second directory searched
  std::string mConfigFileName;                         // "VEXA_TVR.dat"
  std::string mLogLevelKey;                            // "TivoraLogLevel"
  std::string mTraceKey;                               // "TivoraTrace"
  std::string mSnpeLogLevelKey;                        // "SNPELogLevel"
  std::map<std::string, tvr_loglevel_t> mLogLevelMap;  // "V" "D" "I" "W" "E"
  std::map<std::string, bool> mBoolMap;                // "true" "enable" "false" "disable"
  std::map<int, std::string> mPriorityTagMap;          // Android priority -> "[TVR ...]"
  tvr_loglevel_t mLogLevel;                            // current threshold, INFO until configured
  std::string mDataDir;                                // directory of the configuration file; empty when none was found

  static TivoraLogger* mpSingleton;
  static std::mutex mSingletonLock;

 public:
  // The process-wide logger, created and configured by the first call. Never destroyed.
  static TivoraLogger* getInstance();

  virtual ~TivoraLogger();

  tvr_loglevel_t getLogLevel();

  // Sets the threshold; any value is stored as given (above ERROR, nothing is enabled).
  void setLogLevel(tvr_loglevel_t level);

  // True when a message of `level` passes the threshold.
  bool isLogEnabled(tvr_loglevel_t level);

  // Directory the configuration file was found in, without a trailing "/"; empty when none was.
  std::string getDataDir();

  // Writes one record at Android `priority` (2..6; any other prints with the tag "[TVR LOG]").
  // `format` is a printf format; the message is cut at 1023 characters. No level check is made.
  void logPrint(std::string className, const char* functionName, int priority, std::string format, ...);

  // The NN runtime's log level for a logger level: VERBOSE and DEBUG give 4, INFO 3, WARN 2,
  // anything else 1.
  int convert(tvr_loglevel_t level);

 private:
  TivoraLogger();
  TivoraLogger(const TivoraLogger&) = delete;
  TivoraLogger& operator=(const TivoraLogger&) = delete;

  // Reads the configuration file; called once, by getInstance.
  void setup();
};

// printf-style formatting into a new string of at most 1023 characters (longer text is cut).
TVR_EXPORT std::string format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

}  // namespace tivora
