// OpenCV's image codecs, loaded on first use.
#include <aimhue/picture_files.h>
#include <aimhue/plume_log.h>
#include <dlfcn.h>

#include <type_traits>

// Declarations only: nothing of the codecs' library is linked.
#include <opencv2/imgcodecs.hpp>

#ifndef AIMHUE_IMGCODECS_LIBRARY
#error "the build names the codecs' library (AIMHUE_IMGCODECS_LIBRARY)"
#endif

namespace aimhue {
namespace {

// The functions' types as the header declares them (checked below without
// referring to the functions themselves), and their linker names in the
// library. The names follow from the types under the C++ ABI of the
// system's compiler; a library built otherwise is refused as "missing".
using ImwriteFunction = bool (*)(const cv::String&, cv::InputArray, const std::vector<int>&);
using ImencodeFunction = bool (*)(const cv::String&, cv::InputArray, std::vector<uchar>&,
                                  const std::vector<int>&);
using ImreadFunction = cv::Mat (*)(const cv::String&, int);
static_assert(std::is_same<decltype(&cv::imwrite), ImwriteFunction>::value, "cv::imwrite");
static_assert(std::is_same<decltype(&cv::imencode), ImencodeFunction>::value, "cv::imencode");
static_assert(std::is_same<decltype(&cv::imread), ImreadFunction>::value, "cv::imread");
constexpr char kImwrite[] =
    "_ZN2cv7imwriteERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEERKNS_11_InputArrayERKSt"
    "6vectorIiSaIiEE";
constexpr char kImencode[] =
    "_ZN2cv8imencodeERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEERKNS_11_InputArrayERSt"
    "6vectorIhSaIhEERKSB_IiSaIiEE";
constexpr char kImread[] = "_ZN2cv6imreadERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEEi";

struct Codecs {
  ImwriteFunction imwrite = nullptr;
  ImencodeFunction imencode = nullptr;
  ImreadFunction imread = nullptr;
};

Codecs Load() {
  Codecs codecs;
  void* library = dlopen(AIMHUE_IMGCODECS_LIBRARY, RTLD_NOW | RTLD_GLOBAL);
  if (library == nullptr) {
    const char* why = dlerror();
    PlumeLogError("PictureFiles--Error :: cannot load the picture codecs: %s",
                  why != nullptr ? why : AIMHUE_IMGCODECS_LIBRARY);
    return codecs;
  }
  // The library stays loaded for the life of the process: OpenCV keeps its
  // codec registry in it.
  codecs.imwrite = reinterpret_cast<ImwriteFunction>(dlsym(library, kImwrite));
  codecs.imencode = reinterpret_cast<ImencodeFunction>(dlsym(library, kImencode));
  codecs.imread = reinterpret_cast<ImreadFunction>(dlsym(library, kImread));
  if (codecs.imwrite == nullptr || codecs.imencode == nullptr || codecs.imread == nullptr) {
    PlumeLogError("PictureFiles--Error :: %s lacks the picture functions", AIMHUE_IMGCODECS_LIBRARY);
    return Codecs{};
  }
  return codecs;
}

// Loaded once, by the first caller; read-only afterwards.
const Codecs& LoadedCodecs() {
  static const Codecs codecs = Load();
  return codecs;
}

}  // namespace

bool WritePictureFile(const std::string& fullname, const cv::Mat& picture,
                      const std::vector<int>& params) {
  const Codecs& codecs = LoadedCodecs();
  if (codecs.imwrite == nullptr) return false;
  try {
    return codecs.imwrite(fullname, picture, params);
  } catch (const cv::Exception&) {
    return false;
  }
}

bool EncodePicture(const std::string& extension, const cv::Mat& picture,
                   std::vector<uint8_t>& bytes, const std::vector<int>& params) {
  const Codecs& codecs = LoadedCodecs();
  if (codecs.imencode == nullptr) return false;
  try {
    std::vector<uchar> encoded;
    if (!codecs.imencode(extension, picture, encoded, params)) return false;
    bytes.swap(encoded);
    return true;
  } catch (const cv::Exception&) {
    return false;
  }
}

cv::Mat ReadPictureFile(const std::string& fullname, int flags) {
  const Codecs& codecs = LoadedCodecs();
  if (codecs.imread == nullptr) return cv::Mat();
  try {
    return codecs.imread(fullname, flags);
  } catch (const cv::Exception&) {
    return cv::Mat();
  }
}

}  // namespace aimhue
