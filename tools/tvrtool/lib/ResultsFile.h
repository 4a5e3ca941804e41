// `tvrtool run --results FILE`: one CSV line per applied frame, written as the frames run, without
// allocating. Times are milliseconds; a stage the frame did not report, and every stage of a frame
// whose apply failed, is an empty field.
//
//   frame,status,split ms,NV12 to RGB ms,RGB to float ms,execute ms,apply ms,result
//   1,0,0.412,1.630,0.088,0.051,2.301,"mean_rgb 0.4912 0.4912 -0.3290 = colour 191 191 86 (#BFBF56)"
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "FrameTimings.h"

namespace tvrtool {

// A text field: in double quotes, each quote doubled, line ends as blanks. Returns the length
// written, cut to fit `size` (at least 3) with its NUL.
size_t quoteCsv(const char* text, char* out, size_t size);

// One frame's line, with its line end; the columns as FrameTimings fills them.
size_t formatResultLine(char* line, size_t size, uint32_t frame, int32_t status, const int64_t* columns,
                        size_t columnCount, int64_t applyNs, const char* text);

class ResultsFile {
 public:
  // Creates (or empties) the file now, before the frames. Null, with `error`, when it cannot.
  static std::unique_ptr<ResultsFile> create(const std::string& path, std::string& error);
  ~ResultsFile();

  // The header, once, after the first frame has named the stage columns.
  void writeHeader(const FrameTimings& timings);
  void writeLine(uint32_t frame, int32_t status, const int64_t* columns, size_t columnCount, int64_t applyNs,
                 const char* text);
  // Closes the file; a message for the user when something could not be written, else "".
  std::string finish();

  ResultsFile(const ResultsFile&) = delete;
  ResultsFile& operator=(const ResultsFile&) = delete;

 private:
  ResultsFile() = default;
  std::string mPath;
  std::FILE* mFile = nullptr;
  std::vector<char> mBuffer;  // the file's buffer, so that writing never allocates
  bool mHeaderWritten = false;
};

}  // namespace tvrtool
