// ONNX's backend test cases (Debian's libonnx-testdata): a model with golden inputs and outputs,
// read with ONNX's protobuf classes, for the runtime's tests and its conformance count. Not part of
// the runtime.
#pragma once

#include <string>
#include <vector>

namespace snpe_stub::testdata {

// Where Debian installs the test cases: <root>/node/<case>/model.onnx, test_data_set_0/...
inline constexpr const char* kRoot = "/usr/share/libonnx-testdata/data";

// A golden tensor in the model's order (rank 4: N x C x H x W).
struct Golden {
  std::string name;  // the graph's
  std::vector<size_t> dims;
  std::vector<float> values;

  // As the runtime shows it and its user buffers hold it (rank 4: N x H x W x C).
  std::vector<size_t> deviceDims() const;
  std::vector<float> deviceValues() const;
};

struct TestCase {
  std::string model;            // the model file
  std::vector<Golden> inputs;   // the graph's inputs that are not initialisers, in order
  std::vector<Golden> outputs;  // the graph's outputs, in order
};

// Reads <directory>/model.onnx and its first data set; false with the reason, also for a case
// whose inputs or outputs are not all float tensors.
bool readTestCase(const std::string& directory, TestCase& test, std::string& error);

// Makes the case's inputs from index `from` on constants of the model, with their golden values:
// a camera network has its weights and scales built in, and the engine wants them so.
void makeConstant(TestCase& test, size_t from);

// Every element (NaN equals NaN) within 1e-4 + 1e-3 x |expected| of the expected one, and as many of them.
bool closeTo(const std::vector<float>& actual, const std::vector<float>& expected);

}  // namespace snpe_stub::testdata
