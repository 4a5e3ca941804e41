#include "RunReport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "TimingStatistics.h"

namespace tvrtool {

std::string timingTable(const FrameTimes& times) {
  const std::pair<const char*, const std::vector<int64_t>*> rows[] = {
      {"split", &times.split},           {"NV12 to RGB", &times.nv12ToRgb}, {"RGB to float", &times.rgbToFloat},
      {"execute", &times.execute},       {"apply (total)", &times.apply}};
  char line[96];
  std::snprintf(line, sizeof line, "%-14s %10s %10s\n", "stage", "median ms", "p95 ms");
  std::string table = line;
  for (const auto& [name, series] : rows) {
    const Spread spread = spreadOf(*series);
    std::snprintf(line, sizeof line, "%-14s %10.3f %10.3f\n", name, spread.medianMs, spread.p95Ms);
    table += line;
  }
  return table;
}

Rgb meanColour(const float meanRgb[3], int mean, int divisor) {
  uint8_t channel[3];
  for (int i = 0; i < 3; ++i) {
    const double value = std::round(static_cast<double>(meanRgb[i]) * divisor + mean);
    channel[i] = static_cast<uint8_t>(std::isnan(value) ? 0 : std::clamp(value, 0.0, 255.0));
  }
  return {channel[0], channel[1], channel[2]};
}

std::string resultText(const tivora::examples::MeanColourOutput& output, const tivora::examples::MeanColourConfig& config) {
  const Rgb colour = meanColour(output.mean_rgb, config.mean, config.divisor);
  char text[128];
  std::snprintf(text, sizeof text, "mean_rgb: %.4f %.4f %.4f -> colour %u %u %u (#%02X%02X%02X)\n", output.mean_rgb[0],
                output.mean_rgb[1], output.mean_rgb[2], colour.r, colour.g, colour.b, colour.r, colour.g, colour.b);
  return text;
}

}  // namespace tvrtool
