#include "Layout.h"

#include <cstdint>
#include <cstring>

namespace snpe_stub::detail {
namespace {

constexpr size_t kElement = sizeof(float);

std::string listText(const std::vector<size_t>& values) {
  std::string text;
  for (size_t value : values) text += (text.empty() ? "" : "x") + std::to_string(value);
  return text;
}

// a * b + c, or SIZE_MAX when that does not fit.
size_t mulAdd(size_t a, size_t b, size_t c) {
  if (a != 0 && b > (SIZE_MAX - c) / a) return SIZE_MAX;
  return a * b + c;
}

// Element steps of each shown dimension in the engine's packed order.
std::vector<size_t> engineSteps(const Tensor& tensor) {
  const std::vector<size_t>& d = tensor.dims;
  std::vector<size_t> steps(d.size());
  if (tensor.channelsLast) {  // shown N, H, W, C; computed N, C, H, W
    steps = {d[1] * d[2] * d[3], d[2], 1, d[1] * d[2]};
    return steps;
  }
  size_t step = 1;
  for (size_t i = d.size(); i-- > 0;) {
    steps[i] = step;
    step *= d[i];
  }
  return steps;
}

// Calls f(byte offset, engine index) for every element, the last dimension fastest.
template <typename F>
void forEachElement(const Binding& binding, F f) {
  const std::vector<size_t>& dims = binding.tensor->dims;
  const std::vector<size_t>& bytes = *binding.strides;
  const std::vector<size_t> steps = engineSteps(*binding.tensor);
  const size_t last = dims.size() - 1;
  std::vector<size_t> index(dims.size(), 0);
  size_t offset = 0;
  size_t element = 0;
  while (true) {
    for (size_t i = 0; i < dims[last]; ++i) f(offset + i * bytes[last], element + i * steps[last]);
    size_t d = last;
    while (d-- > 0) {
      if (++index[d] < dims[d]) {
        offset += bytes[d];
        element += steps[d];
        break;
      }
      offset -= (dims[d] - 1) * bytes[d];
      element -= (dims[d] - 1) * steps[d];
      index[d] = 0;
    }
    if (d == SIZE_MAX) return;
  }
}

}  // namespace

std::string checkFit(const Tensor& tensor, const std::vector<size_t>& strides, size_t size) {
  const std::vector<size_t>& dims = tensor.dims;
  if (strides.size() != dims.size()) {
    return std::to_string(strides.size()) + " strides for " + std::to_string(dims.size()) + " dimensions";
  }
  size_t span = kElement;
  size_t extent = kElement;
  for (size_t d = 0; d < dims.size(); ++d) {
    if (dims[d] > 1) span = std::max(span, mulAdd(dims[d], strides[d], 0));
    extent = mulAdd(dims[d] - 1, strides[d], extent);
  }
  if (extent > span) {
    return "strides " + listText(strides) + " do not fit dimensions " + listText(dims) + " of floats";
  }
  if (size != span) {
    return "the user buffer holds " + std::to_string(size) + " bytes, the tensor needs " +
           (span == SIZE_MAX ? std::string("more than fit in memory") : std::to_string(span));
  }
  return {};
}

void gather(const Binding& from, float* values) {
  forEachElement(from,
                 [&](size_t offset, size_t element) { std::memcpy(&values[element], from.memory + offset, kElement); });
}

void scatter(const float* values, const Binding& to) {
  forEachElement(to,
                 [&](size_t offset, size_t element) { std::memcpy(to.memory + offset, &values[element], kElement); });
}

}  // namespace snpe_stub::detail
