// How a user buffer holds a tensor: caller memory with one byte stride per dimension, as the runtime
// shows the tensor. Engines get the elements packed in their own order (see Tensor::channelsLast).
#pragma once

#include <string>
#include <vector>

#include "Model.h"

namespace snpe_stub::detail {

// Whether a float buffer of `size` bytes with these strides fits `tensor`: empty when it does, else
// the reason. It fits when the elements lie within the span of the dimension that spans most (its
// size times its stride: rows keep their padding) and that span is the buffer's size exactly, so a
// buffer made for another shape is refused.
std::string checkFit(const Tensor& tensor, const std::vector<size_t>& strides, size_t size);

// The elements of a checked binding, to or from `values` packed in the engine's order.
void gather(const Binding& from, float* values);
void scatter(const float* values, const Binding& to);

}  // namespace snpe_stub::detail
