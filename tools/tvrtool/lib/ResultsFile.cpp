#include "ResultsFile.h"

#include <cerrno>
#include <cstring>

namespace tvrtool {

size_t quoteCsv(const char* text, char* out, size_t size) {
  size_t n = 0;
  out[n++] = '"';
  for (const char* c = text; *c != '\0'; ++c) {
    if (n + (*c == '"' ? 2 : 1) + 2 > size) break;  // keep room for the closing quote and the NUL
    if (*c == '"') out[n++] = '"';
    out[n++] = *c == '\n' || *c == '\r' ? ' ' : *c;
  }
  out[n++] = '"';
  out[n] = '\0';
  return n;
}

size_t formatResultLine(char* line, size_t size, uint32_t frame, int32_t status, const int64_t* columns,
                        size_t columnCount, int64_t applyNs, const char* text) {
  size_t n = static_cast<size_t>(std::snprintf(line, size, "%u,%d,", frame, status));
  for (size_t i = 0; i < columnCount && n < size; ++i) {
    n += static_cast<size_t>(status == 0 && columns[i] >= 0
                                 ? std::snprintf(line + n, size - n, "%.3f,", static_cast<double>(columns[i]) / 1e6)
                                 : std::snprintf(line + n, size - n, ","));
  }
  if (n < size) n += static_cast<size_t>(std::snprintf(line + n, size - n, "%.3f,", static_cast<double>(applyNs) / 1e6));
  if (n + 4 <= size) n += quoteCsv(text, line + n, size - n - 1);
  if (n + 1 < size) {
    line[n++] = '\n';
    line[n] = '\0';
  }
  return n < size ? n : size - 1;
}

std::unique_ptr<ResultsFile> ResultsFile::create(const std::string& path, std::string& error) {
  std::unique_ptr<ResultsFile> results(new ResultsFile());
  results->mPath = path;
  results->mFile = std::fopen(path.c_str(), "w");
  if (results->mFile == nullptr) {
    error = "cannot write the results " + path + ": " + std::strerror(errno);
    return nullptr;
  }
  results->mBuffer.resize(64 * 1024);
  std::setvbuf(results->mFile, results->mBuffer.data(), _IOFBF, results->mBuffer.size());
  return results;
}

ResultsFile::~ResultsFile() { finish(); }

void ResultsFile::writeHeader(const FrameTimings& timings) {
  if (mHeaderWritten) return;
  mHeaderWritten = true;
  std::fputs("frame,status,", mFile);
  char name[FrameTimings::kMaxNameLength + 4], quoted[2 * sizeof name + 3];
  for (size_t i = 0; i < timings.columnCount(); ++i) {
    std::snprintf(name, sizeof name, "%s ms", timings.columnName(i));
    const bool plain = std::strpbrk(name, ",\"\r\n") == nullptr;
    if (!plain) quoteCsv(name, quoted, sizeof quoted);
    std::fprintf(mFile, "%s,", plain ? name : quoted);
  }
  std::fputs("apply ms,result\n", mFile);
}

void ResultsFile::writeLine(uint32_t frame, int32_t status, const int64_t* columns, size_t columnCount,
                            int64_t applyNs, const char* text) {
  char line[2048];
  std::fwrite(line, 1, formatResultLine(line, sizeof line, frame, status, columns, columnCount, applyNs, text), mFile);
}

std::string ResultsFile::finish() {
  if (mFile == nullptr) return "";
  const bool failed = std::ferror(mFile) != 0;
  const bool closed = std::fclose(mFile) == 0;
  mFile = nullptr;
  return failed || !closed ? "cannot write the results " + mPath : "";
}

}  // namespace tvrtool
