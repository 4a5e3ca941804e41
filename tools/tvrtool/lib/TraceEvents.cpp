#include "TraceEvents.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace tvrtool {

namespace {

bool startsMarker(std::string_view text, size_t at) {
  return text.compare(at, 2, "B|") == 0 || text.compare(at, 2, "E|") == 0;
}

// End of the marker starting at `start`: after the first "|0" followed by the end or a new marker.
size_t markerEnd(std::string_view text, size_t start) {
  for (size_t at = start;;) {
    at = text.find("|0", at);
    if (at == std::string_view::npos) return text.size();
    at += 2;
    if (at == text.size() || startsMarker(text, at)) return at;
  }
}

bool readMarker(std::string_view marker, TraceEvent& event) {
  if (marker.size() < 7 || !startsMarker(marker, 0) || marker.substr(marker.size() - 2) != "|0") return false;
  const size_t pidEnd = marker.find('|', 2);
  if (pidEnd == 2 || pidEnd > 12 || pidEnd + 2 >= marker.size() - 1) return false;
  int64_t pid = 0;
  for (size_t i = 2; i < pidEnd; ++i) {
    if (marker[i] < '0' || marker[i] > '9') return false;
    pid = pid * 10 + (marker[i] - '0');
  }
  event.phase = marker[0];
  event.pid = pid;
  event.name.assign(marker.substr(pidEnd + 1, marker.size() - 2 - (pidEnd + 1)));
  return !event.name.empty();
}

void appendEscaped(std::string& out, const std::string& text) {
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

}  // namespace

ParsedMarkers parseMarkers(std::string_view text, const std::vector<MarkerRead>& reads) {
  ParsedMarkers parsed;
  auto read = reads.begin();
  for (size_t start = 0; start < text.size();) {
    const size_t end = markerEnd(text, start);
    while (read != reads.end() && std::next(read) != reads.end() && std::next(read)->offset <= start) ++read;
    TraceEvent event{};
    if (readMarker(text.substr(start, end - start), event)) {
      event.timeNs = read != reads.end() ? read->timeNs : 0;
      parsed.events.push_back(std::move(event));
    } else {
      ++parsed.rejected;
    }
    start = end;
  }
  return parsed;
}

std::string toChromeTraceJson(const std::vector<TraceEvent>& events, int64_t originNs) {
  std::string json = "{\"traceEvents\":[";
  for (size_t i = 0; i < events.size(); ++i) {
    const TraceEvent& event = events[i];
    json += i == 0 ? "\n" : ",\n";
    json += "{\"name\":\"";
    appendEscaped(json, event.name);
    json += "\",\"ph\":\"";
    json += event.phase;
    json += "\",\"ts\":";
    appendMicroseconds(json, event.timeNs - originNs);
    const std::string pid = std::to_string(event.pid);
    json += ",\"pid\":" + pid + ",\"tid\":" + pid + "}";
  }
  json += "\n],\"displayTimeUnit\":\"ms\"}\n";
  return json;
}

}  // namespace tvrtool
