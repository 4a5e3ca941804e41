#include "TraceEvents.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace tvrtool {

namespace {

void appendEscaped(std::string& out, std::string_view text) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (byte < 0x20 || byte >= 0x7f) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", byte);
      out += escaped;
    } else {
      out += c;
    }
  }
}

// Microseconds with three decimals, from integer nanoseconds (no locale, no rounding drift).
void appendMicroseconds(std::string& out, int64_t ns) {
  char text[32];
  const char* sign = ns < 0 ? "-" : "";
  const int64_t magnitude = ns < 0 ? -ns : ns;
  std::snprintf(text, sizeof text, "%s%lld.%03lld", sign, static_cast<long long>(magnitude / 1000),
                static_cast<long long>(magnitude % 1000));
  out += text;
}

void appendNameArgument(std::string& out, std::string_view name) {
  out += ",\"args\":{\"name\":\"";
  appendEscaped(out, name);
  out += "\"}";
}

}  // namespace

void TraceEvent::setName(std::string_view text) {
  const size_t length = std::min(text.size(), kNameSize - 1);
  std::memcpy(name, text.data(), length);
  name[length] = '\0';
}

bool readMarker(std::string_view marker, char& phase, int64_t& pid, std::string_view& name) {
  if (marker.size() < 7 || (marker[0] != 'B' && marker[0] != 'E') || marker[1] != '|' ||
      marker.substr(marker.size() - 2) != "|0") {
    return false;
  }
  const size_t pidEnd = marker.find('|', 2);
  if (pidEnd == 2 || pidEnd > 12 || pidEnd + 2 >= marker.size() - 1) return false;
  pid = 0;
  for (size_t i = 2; i < pidEnd; ++i) {
    if (marker[i] < '0' || marker[i] > '9') return false;
    pid = pid * 10 + (marker[i] - '0');
  }
  phase = marker[0];
  name = marker.substr(pidEnd + 1, marker.size() - 2 - (pidEnd + 1));
  return !name.empty();
}

std::string toChromeTraceJson(const TraceEvent* events, size_t count, int64_t pid, const std::string& processName,
                              int64_t originNs) {
  std::string json = "{\"traceEvents\":[\n{\"name\":\"process_name\",\"ph\":\"M\",\"pid\":" + std::to_string(pid);
  appendNameArgument(json, processName);
  json += "}";
  for (size_t i = 0; i < count; ++i) {
    const TraceEvent& event = events[i];
    const std::string ids = ",\"pid\":" + std::to_string(event.pid) + ",\"tid\":" + std::to_string(event.tid);
    if (event.phase == 'M') {
      json += ",\n{\"name\":\"thread_name\",\"ph\":\"M\"" + ids;
      appendNameArgument(json, event.name);
      json += "}";
      continue;
    }
    json += ",\n{\"name\":\"";
    appendEscaped(json, event.name);
    json += "\",\"ph\":\"";
    json += event.phase;
    json += "\",\"ts\":";
    appendMicroseconds(json, event.timeNs - originNs);
    if (event.phase == 'X') {
      json += ",\"dur\":";
      appendMicroseconds(json, event.durationNs);
    }
    json += ids;
    if (event.phase == 'C') {
      char value[32];
      std::snprintf(value, sizeof value, "%.6f", event.value);
      json += std::string(",\"args\":{\"ms\":") + value + "}";
    }
    json += "}";
  }
  json += "\n],\"displayTimeUnit\":\"ms\"}\n";
  return json;
}

}  // namespace tvrtool
