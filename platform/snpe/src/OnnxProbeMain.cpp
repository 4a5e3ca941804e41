// snpe_onnx_probe [output layer...] < model.onnx
// Does what the NN runtime's stand-in does with an ONNX model (ONNX's check, OpenCV's import, a
// build run once on zeros), in a process of its own; prints "ok" or "error: <reason>". Started by
// the stand-in (OnnxModel.h), which takes any other ending, a crash above all, as a refusal.
#include <cstdio>
#include <iostream>
#include <iterator>

#include "OnnxModel.h"

int main(int argc, char** argv) {
  const std::string bytes{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
  std::string error = snpe_stub::detail::tryOnnxModel(bytes, std::vector<std::string>(argv + 1, argv + argc));
  for (char& c : error) c = c == '\n' ? ' ' : c;
  std::printf("%s\n", error.empty() ? "ok" : ("error: " + error).c_str());
  return 0;
}
