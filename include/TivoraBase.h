// The base class of every camera processing.
//
// A processing derives from TivoraBase and implements six hooks. The host drives it through
// hvx::IProcessing; the base checks each call, writes a trace marker pair around it (see
// ScopedTrace.h), logs failures at ERROR with the processing's class name, and calls the hooks:
//
//   host call          base checks, in order                       hook(s) called
//   setup(create)      bound to the manager (3), record (12)        setupImpl; on any failure teardownImpl
//   initialize(static) bound (3), record (12), image library        initializeImpl; on any failure finalizeImpl
//                      operation mode (16)
//   apply(in,out,dbg)  bound (3), input (12), output (12)           applyDebugImpl if dbg, else applyImpl
//   abort()            -                                            none; returns 0
//   finalize()         -                                            finalizeImpl; returns 0
//   teardown()         -                                            teardownImpl; returns 0
//
// A hook's non-zero status is returned to the host unchanged. finalize and teardown do not check
// anything, so finalizeImpl and teardownImpl must tolerate running after a failed or skipped
// setup or initialize (release only what exists).
//
// Networks: a processing names its networks by index 0..4; the base maps (resource type, index)
// to a slot of the process-wide SNPEMgr (slot = type x 5 + min(index, 5)) and forwards.
//
// Threads: the lifecycle operations take no lock of their own; the network operations lock the
// slot they address. Construction binds the processing to the process-wide logger and manager.
//
// Debugging: DebugBase (below) reads a debug configuration and dumps records and image buffers.
#pragma once

#include <iosfwd>
#include <string>
#include <unordered_map>
#include <vector>

#include "SNPEMgr.h"
#include "SNPEParam.h"
#include "TivoraLogger.h"
#include "hvx/IProcessing.h"
#include "tvr_export.h"
#include "tvr_types.h"

namespace tivora {

class TVR_EXPORT TivoraBase : public hvx::IProcessing {
 public:
  // Channel order of convertRGB888ToFloat: REVERSE swaps the first and third sample of each pixel
  // (RGB in, BGR out); every other value keeps the order.
  enum RgbOrder : int32_t {
    RGB_ORDER_KEEP = 0,
    RGB_ORDER_REVERSE = 1,
  };

  // Debug support of a processing: a debug configuration file, and dumps of the host records and
  // of image buffers into its data directory. The base never dumps by itself; a processing owns a
  // DebugBase (or derives from it), loads its configuration once, typically in setupImpl, and dumps
  // wherever it wants data on disk:
  //
  //   mDebug.loadConfig("MyProcessingDebug.dat");                  // in setupImpl
  //   mDebug.dumpBufferByKey("src", frame, "DumpSource", "nv12");  // in applyImpl, per frame
  //
  // The configuration file lies in the logger's data directory (TivoraLogger::getDataDir(): the
  // directory where "VEXA_TVR.dat" was found). It holds key=value lines:
  //
  //   DataDir=/data/vendor/camera/dumps     where the dumps go (default: the logger's directory)
  //   DumpSource=true                        switches on the dumps made under the key "DumpSource"
  //
  // Lines end at '\n'. A line without '=' and an empty line are skipped; the key is everything
  // before the first '=', the value everything after it. Nothing is trimmed: blanks, tabs and a
  // trailing '\r' (a file saved with CRLF line ends) stay part of the key or the value, and there
  // are no comments. When a key appears twice, the first line wins. A buffer key is switched on by
  // the exact value "true" only ("True", "1" or "true " leave it off).
  //
  // Debugging is on once a loadConfig has succeeded, and stays on: nothing switches it off again.
  // While it is off every dump does nothing. Nothing here throws or reports failures beyond
  // loadConfig's result; a dump that cannot be written is silently skipped. Messages go to the
  // logger at DEBUG with the tag "DebugBase".
  //
  // Threads: no locking. A DebugBase belongs to one processing and is used from the thread that
  // drives it.
  class TVR_EXPORT DebugBase {
   protected:
    std::string mDataDirKey;                               // "DataDir": the key that sets mDataDir
    std::unordered_map<std::string, std::string> mConfig;  // pairs read by the last successful open
    std::string mDataDir;                                  // where dumps go: the logger's directory, or DataDir
    bool mDebugEnabled;                                    // off until a loadConfig succeeds; never off again

   public:
    DebugBase();
    virtual ~DebugBase();

    // Whether a loadConfig has switched debugging on.
    bool isDebugEnabled();

    // Reads "<logger's data directory>/<fileName>". Returns true when this call switched
    // debugging on: the file opened and the data directory (the logger's, or the value of a
    // "DataDir" line) is neither empty nor holds a blank (' ').
    //  - Every call first resets the data directory to the logger's.
    //  - A file that does not open leaves the configuration and debugging as they were: false.
    //  - A file that opens replaces the configuration, even when its data directory is then
    //    refused (false; debugging keeps its earlier state).
    // Logs "Read config file <dir>/<file>", each "Config <key> = <value>", then "Debug is enabled"
    // or "Cannot set data directory".
    bool loadConfig(std::string fileName);

    // Parameter dumps: write a host record as text into `stream`, one field a line, each line
    // flushed. Leading commas show the nesting and labels are the record's field names:
    //
    //   Input parameter,
    //   ,rotation,1
    //   ,p_src
    //   ,,buf
    //   ,,,p_base,7f3c0010           addresses as the low 32 bits in at least 8 hex digits
    //   ...
    //   ,,crop
    //   ,,,pos
    //   ,,,,x,0
    //
    // Numbers are decimal (enumerations and int32 fields signed, uint32 fields unsigned), bools in
    // the stream's own bool format, strings as they stand. An input record without a frame writes
    // ",p_src,NULL" in place of the frame; the output and debug records write their heading only,
    // since their contents belong to the processing. Nothing is written unless debugging is on,
    // the record is not null and the stream is open and neither failed nor bad; write errors stay
    // in the stream's state. dumpBaseCreateParam writes one path line per entry in use (dlc_num),
    // at most the record's five.
    void dumpBaseCreateParam(std::ofstream& stream, const tvr_create_param_t* param);
    void dumpBaseStaticParam(std::ofstream& stream, const tvr_static_param_t* param);
    void dumpBaseInputParam(std::ofstream& stream, const tvr_input_param_t* param);
    void dumpBaseOutputParam(std::ofstream& stream, const tvr_output_param_t* param);
    void dumpBaseDebugParam(std::ofstream& stream, const tvr_debug_param_t* param);

    // Writes `size` bytes from `data` to the file `path`, creating or truncating it. Does nothing
    // when debugging is off, `data` is null or `size` is below 1.
    void dumpBuffer(std::string path, const unsigned char* data, int32_t size);

    // When debugging is on and the configuration maps `key` to exactly "true", writes the whole
    // allocation of `buffer` (buf_size bytes from p_base: every plane, row padding included, as it
    // lies in memory) to
    //     <data directory>/<boot time in ns>_<name>_<stride>x<height>.<extension>
    // e.g. "5000000000_src_1920x1080.nv12". The name gives the stride in bytes (not the width) and
    // the height (not the scanline), which is how a reader finds the rows; the boot-time stamp
    // keeps two dumps under one name apart. Does nothing for a null buffer, an empty one, or one
    // whose buf_size does not fit a signed 32-bit count. `tvrtool view` turns the file into a PNG.
    void dumpBufferByKey(std::string name, const tvr_image_buf_t* buffer, std::string key, std::string extension);
  };

 protected:
  SNPEMgr::TVRResourceType mResourceType;  // selects the processing's five network slots
  TivoraLogger* mpLogger;                  // process-wide, not owned
  SNPEMgr* mpSNPEMgr;                      // process-wide, not owned; null means "not ready"

 public:
  explicit TivoraBase(SNPEMgr::TVRResourceType resourceType);

  tvr_err_t setup(const void* createParam) override;
  tvr_err_t initialize(const void* staticParam) override;
  tvr_err_t apply(const void* input, void* output, void* debug) override;
  tvr_err_t abort() override;
  tvr_err_t finalize() override;
  tvr_err_t teardown() override;
  // "TivoraBase"; a derived processing returns its own name.
  const char* getProcessingName() override;
  // Releases nothing: the logger and the manager live for the process.
  ~TivoraBase() override;

 protected:
  // The hooks. Statuses other than 0 are returned to the host unchanged.
  virtual tvr_err_t setupImpl(const void* createParam) = 0;  // a tvr_create_param_t
  virtual void teardownImpl() = 0;
  virtual tvr_err_t initializeImpl(const void* staticParam) = 0;  // a tvr_static_param_t
  virtual void finalizeImpl() = 0;
  virtual tvr_err_t applyImpl(const void* input, void* output) = 0;  // a tvr_input_param_t, the output record
  virtual tvr_err_t applyDebugImpl(const void* input, void* output, void* debug) = 0;

  // The name every message and trace marker of this processing carries; override it.
  virtual std::string getClassName();

  // Network access by index (see the header comment for the slot mapping).
  std::string getModelVersion(unsigned int index);                      // "" when none
  std::string getInputBufferName(unsigned int index, unsigned int n);   // n-th name in the input map
  std::string getOutputBufferName(unsigned int index, unsigned int n);  // n-th name in the output map
  // Builds the network, or reuses the slot's when `param` is equal; see SNPEMgr::createSNPE.
  tvr_err_t createSNPE(unsigned int index, SNPEParam& param, std::vector<std::string>& outputLayers);
  // Runs the network on the slot's user-buffer maps; see SNPEMgr::execute.
  tvr_err_t executeSNPE(unsigned int index);
  void deleteSNPE(unsigned int index);

  // Image buffers. createImageBuf makes a record and its pixel memory, both owned by the caller
  // until deleteImageBuf; `pixelSize` is the bytes per sample (1 for 8-bit planes, 4 for floats).
  //   format 0..3 (4:2:0)   stride rounded down to even (the record keeps the rounded value, even
  //                         when it ends below the width); size = pixelSize x stride x height x 3/2;
  //                         offset = {0, S, S x 5/4} for 0, {0, S, S} for 1, {0, S, 0} for 2 and 3,
  //                         with S = stride x height
  //   format 4, 5           size = pixelSize x height x stride, offsets 0
  //   format 6              as 4 and 5, memory from the image library's 16-byte aligned allocator
  //   other formats         no pixels (a zero-byte allocation)
  // A stride below the width is raised to the width (WARN); zero sizes only warn. Sizes are 32-bit
  // and wrap. Pixel memory is not cleared. Returns null when the pixel memory cannot be had (an
  // ERROR message; the record is not reclaimed on that path).
  tvr_image_buf_t* createImageBuf(uint32_t width, uint32_t height, uint32_t stride, tvr_image_format_t format,
                                  uint64_t pixelSize);
  // Releases a record from createImageBuf and its pixels; null is ignored. The deallocator follows
  // `format`, so never change the format of a buffer made by createImageBuf.
  void deleteImageBuf(tvr_image_buf_t* buf);

  // Image operations for the per-frame path: they check every argument first (status 12 and an
  // ERROR message naming the fault, nothing written), then work without allocating.

  // NV12 planes to RGB888 through up to four image-library stages, each run when its buffers are
  // given (and, for the scalings, when they change the size):
  //   scale down (each out size <= current) -> scale up (each >= current)
  //   -> rotate (rotation != 0; the rotate records carry the UNROTATED sizes, their strides suit
  //      the rotated rows) -> colour conversion into `rgb` (always).
  // Plane records: luma size.w = pixels; chroma size.w = bytes per row (= luma width), size.h =
  // luma height / 2; rgb size.w = 3 x pixels. Only p_base, size and stride are read; every
  // intermediate is caller-made (createImageBuf once, reused per frame). A failed stage leaves the
  // earlier stages' buffers written. Chroma is always read Cb first.
  tvr_err_t convertNv12ToRgb888(const tvr_image_buf_t* sourceY, const tvr_image_buf_t* sourceCC, tvr_image_buf_t* rgb,
                                tvr_rotation_t rotation, const tvr_image_buf_t* scaleDownY,
                                const tvr_image_buf_t* scaleDownCC, const tvr_image_buf_t* scaleUpY,
                                const tvr_image_buf_t* scaleUpCC, const tvr_image_buf_t* rotateY,
                                const tvr_image_buf_t* rotateCC);

  // 8-bit RGB888 (size.w = 3 x pixels, stride in bytes) to floats (stride counted in floats):
  // out = (1/divisor rounded to float) x (float)(in - mean), in the given channel order. Sizes
  // must be equal and the divisor non-zero; widths should be multiples of 3 (the last pixel of a
  // row is always converted whole).
  tvr_err_t convertRGB888ToFloat(const tvr_image_buf_t* source, tvr_image_buf_t* destination, int mean, int divisor,
                                 RgbOrder order);

  // Cuts the crop region of a semi-planar frame (format nv12 or nv21; chroma plane at offset[1],
  // rows one source stride apart) into a luma buffer of the crop's size and an interleaved chroma
  // buffer of the crop's width and half its height.
  tvr_err_t splitYUV420SP(const tvr_image_buf_t* source, tvr_image_buf_t* destinationY, tvr_image_buf_t* destinationCC);

  // Cuts the crop region of a planar frame (format YUV420P_UV or _VU; planes at offset[0..2], rows
  // one source stride apart) into luma, U and V buffers; U and V are half the crop in each direction.
  tvr_err_t splitYUV420P(const tvr_image_buf_t* source, tvr_image_buf_t* destinationY, tvr_image_buf_t* destinationU,
                         tvr_image_buf_t* destinationV);

 private:
  unsigned int slotOf(unsigned int index) const;
};

}  // namespace tivora
