// Descriptions of result, meter and capture files.
#include "file_inspection.h"

#include <aimhue/led_meter.h>
#include <aimhue/shot.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <initializer_list>

#include "command_error.h"
#include "correction_inspection.h"
#include "engine_handle.h"

namespace aimhue {
namespace tool {
namespace {

const char* TypeName(uint32_t type) {
  switch (type) {
    case CIE_X: return "CIE_X";
    case CIE_Y: return "CIE_Y";
    case CIE_Z: return "CIE_Z";
    case CIE_XYZ: return "CIE_XYZ";
    case CAM_R: return "CAM_R";
    case CAM_G: return "CAM_G";
    case CAM_B: return "CAM_B";
    case CAM_RGB: return "CAM_RGB";
    default: return "invalid";
  }
}

ReportJson PlaneJson(const cv::Mat& plane) {
  return ReportJson{{"rows", plane.rows}, {"cols", plane.cols},
                    {"type", plane.empty() ? std::string("empty") : cv::typeToString(plane.type())}};
}

// Minimum, maximum and mean over the finite values of a plane of any depth
// and channel count, and the counts of zero and non-finite values.
void AddStatistics(ReportJson& json, const cv::Mat& plane) {
  cv::Mat values;  // doubles, one row per element, one column per channel
  if (!plane.empty()) plane.reshape(1, static_cast<int>(plane.total())).convertTo(values, CV_64F);
  cv::Mat finite;  // NaN and infinities fail the comparison
  if (!values.empty()) finite = cv::abs(values) <= DBL_MAX;
  const int64_t count = values.empty() ? 0 : cv::countNonZero(finite);
  double low = NAN;
  double high = NAN;
  double mean = NAN;
  if (count > 0) {
    cv::minMaxLoc(values, &low, &high, nullptr, nullptr, finite);
    mean = cv::mean(values, finite)[0];
  }
  json["min"] = static_cast<float>(low);
  json["max"] = static_cast<float>(high);
  json["mean"] = static_cast<float>(mean);
  json["zeros"] = values.empty() ? int64_t{0} : int64_t{cv::countNonZero(values == 0.0)};
  json["nonFinite"] = static_cast<int64_t>(values.total()) - count;
}

// The records shared by meters and shots, under the names of `json`.
void AddRecords(ReportJson& json, const Partition* partition, const LedPanel* panel,
                const Layer* layer, const Capture* capture) {
  if (partition != nullptr) {
    const Partition& p = *partition;
    json["partition"] = {{"x", p.x}, {"y", p.y}, {"w", p.w}, {"h", p.h},
                         {"screen_w", p.screen_w}, {"screen_h", p.screen_h}};
  }
  if (panel != nullptr) {
    json["ledPanel"] = {{"type", panel->type}, {"layout", panel->layout},
                        {"subpixel_type", panel->subpixel_type}, {"w", panel->w},
                        {"h", panel->h}, {"pixel_pitch", panel->pixel_pitch}};
  }
  if (layer != nullptr) {
    json["layer"] = {{"index", layer->index}, {"linear_norms", layer->linear_norms},
                     {"value", layer->value}};
  }
  if (capture != nullptr) {
    json["capture"] = {{"exposure", capture->exposure}, {"gain", capture->gain},
                       {"aperture", capture->aperture}, {"microfocus", capture->microfocus},
                       {"filter", capture->filter}};
  }
}

ReportJson InspectResults(const std::string& file) {
  const Handle handle = LoadHandle(file);
  const AimhueResults results = GetResults(handle.get());
  ReportJson json{{"file", file}, {"kind", "aimhue"}};
  json["fractions"] = ReportJson::array();
  for (const float fraction : results.fractions) json["fractions"].push_back(fraction);
  json["ngLimit"] = results.ngLimit;
  json["targets"] = TargetBlockJson(ToBlock(results.targets));
  json["searchEnd"] = TargetBlockJson(ToBlock(results.searchEnd));
  json["searchStart"] = TargetBlockJson(ToBlock(results.searchStart));
  return json;
}

ReportJson InspectMeter(const std::string& file) {
  LedMeter meter;
  CheckStatus(meter.Load(file), "cannot load meter");
  ReportJson json{{"file", file}, {"kind", "meter"}, {"color", meter.color},
                  {"type", meter.type}, {"typeName", TypeName(meter.type)}};
  json["chroma"] = PlaneJson(meter.chroma);
  AddStatistics(json["chroma"], meter.chroma);
  json["state"] = PlaneJson(meter.state);
  json["state"]["markedDead"] = meter.state.empty() || meter.state.type() != CV_8UC1
                                    ? int64_t{0}
                                    : int64_t{cv::countNonZero(meter.state & 1)};
  json["pos"] = PlaneJson(meter.pos);
  AddRecords(json, meter.partition.get(), meter.led_panel.get(), meter.layer.get(),
             meter.capture.get());
  return json;
}

ReportJson InspectShot(const std::string& file) {
  Shot shot;
  CheckStatus(shot.Load(file), "cannot load capture");
  char type[16];
  std::snprintf(type, sizeof type, "0x%x", shot.type);
  ReportJson json{{"file", file}, {"kind", "shot"}, {"type", type},
                  {"typeName", TypeName(shot.type)}};
  json["image"] = PlaneJson(shot.image);
  AddStatistics(json["image"], shot.image);
  AddRecords(json, shot.part.get(), shot.panel.get(), shot.layer.get(), shot.capture.get());
  if (shot.pattern) {
    const Pattern& p = *shot.pattern;
    json["pattern"] = {{"type", p.type}, {"interval_x", p.interval_x},
                       {"interval_y", p.interval_y}, {"loc_x", p.loc_x}, {"loc_y", p.loc_y},
                       {"lighted_led_w", p.lighted_led_w}, {"lighted_led_h", p.lighted_led_h}};
  }
  if (shot.color) json["color"] = *shot.color;
  if (shot.device) {
    const Device& d = *shot.device;
    json["device"] = {{"id", std::string(d.id, strnlen(d.id, sizeof d.id))},
                      {"cam_type", d.cam_type},
                      {"lens_id", std::string(d.lens_id, strnlen(d.lens_id, sizeof d.lens_id))},
                      {"lens_type", d.lens_type}};
  }
  return json;
}

// Length of the valid UTF-8 sequence of a printable character at `text`,
// or 0: control characters (C0, DEL and the C1 range U+0080 to U+009F)
// and bytes that are not UTF-8 are not printable.
std::size_t PrintableLength(const unsigned char* text, std::size_t left) {
  const unsigned char lead = text[0];
  if (lead >= 0x20 && lead < 0x7f) return 1;
  std::size_t length = 0;
  uint32_t code = 0;
  if (lead >= 0xc2 && lead <= 0xdf) {
    length = 2;
    code = lead & 0x1fu;
  } else if (lead >= 0xe0 && lead <= 0xef) {
    length = 3;
    code = lead & 0x0fu;
  } else if (lead >= 0xf0 && lead <= 0xf4) {
    length = 4;
    code = lead & 0x07u;
  } else {
    return 0;
  }
  if (length > left) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((text[i] & 0xc0u) != 0x80u) return 0;
    code = code << 6 | (text[i] & 0x3fu);
  }
  const uint32_t smallest[5] = {0, 0, 0x80, 0x800, 0x10000};
  const bool valid = code >= smallest[length] && code <= 0x10ffff &&
                     !(code >= 0xd800 && code <= 0xdfff) && !(code >= 0x80 && code <= 0x9f);
  return valid ? length : 0;
}

// `text` safe for a terminal: every byte that is not part of a printable
// UTF-8 character becomes \xNN, so a file's stored strings cannot send
// control sequences.
std::string Printable(const std::string& text) {
  std::string printable;
  const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = PrintableLength(bytes + i, text.size() - i);
    if (length > 0) {
      printable.append(text, i, length);
      i += length;
    } else {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\x%02x", bytes[i]);
      printable += escaped;
      ++i;
    }
  }
  return printable;
}

std::string Text(const ReportJson& value) {
  if (value.is_number_float()) return FloatText(value.get<float>());
  if (value.is_string()) return Printable(value.get<std::string>());
  return value.dump();
}

// A record's fields in their stored order (the JSON object sorts them), or
// "absent".
void PrintRecord(std::ostream& out, const ReportJson& json, const char* record,
                 std::initializer_list<const char*> fields) {
  out << "  " << record << ":";
  if (!json.contains(record)) {
    out << " absent\n";
    return;
  }
  for (const char* field : fields) out << " " << field << " " << Text(json[record][field]);
  out << "\n";
}

void PrintSharedRecords(std::ostream& out, const ReportJson& json) {
  PrintRecord(out, json, "partition", {"x", "y", "w", "h", "screen_w", "screen_h"});
  PrintRecord(out, json, "ledPanel", {"type", "layout", "subpixel_type", "w", "h", "pixel_pitch"});
  PrintRecord(out, json, "layer", {"index", "linear_norms", "value"});
  PrintRecord(out, json, "capture", {"exposure", "gain", "aperture", "microfocus", "filter"});
}

// "  chroma     360 x 640 32F: min ..., max ..., mean ...; 3 zero, 0 not finite"
void PrintPlane(std::ostream& out, const char* title, const ReportJson& plane,
                bool statistics) {
  char line[160];
  std::snprintf(line, sizeof line, "  %-10s %d x %d %s", title, plane["rows"].get<int>(),
                plane["cols"].get<int>(), plane["type"].get<std::string>().c_str());
  out << line;
  if (statistics) {
    out << ": min " << Text(plane["min"]) << ", max " << Text(plane["max"]) << ", mean "
        << Text(plane["mean"]) << "; " << plane["zeros"].get<int64_t>() << " zero, "
        << plane["nonFinite"].get<int64_t>() << " not finite";
  }
}

void PrintResults(std::ostream& out, const ReportJson& json) {
  out << "  engine results (.aimhue)\n  fractions  ";
  for (const auto& fraction : json["fractions"]) out << " " << Text(fraction);
  out << "\n  NG limit    " << Text(json["ngLimit"]) << "\n";
  for (const char* block : {"targets", "searchEnd", "searchStart"}) {
    out << "  " << block << "\n";
    for (const char* point : {"red", "green", "blue", "white"}) {
      const ReportJson& p = json[block][point];
      char line[160];
      std::snprintf(line, sizeof line, "    %-6s L %-14s x %-12s y %s\n", point,
                    Text(p["L"]).c_str(), Text(p["x"]).c_str(), Text(p["y"]).c_str());
      out << line;
    }
  }
}

void PrintMeter(std::ostream& out, const ReportJson& json) {
  out << "  meter (.meter): colour " << json["color"].get<uint32_t>() << ", type "
      << json["type"].get<uint32_t>() << " (" << json["typeName"].get<std::string>() << ")\n";
  PrintPlane(out, "chroma", json["chroma"], true);
  out << "\n";
  PrintPlane(out, "state", json["state"], false);
  out << ": " << json["state"]["markedDead"].get<int64_t>() << " marked dead\n";
  PrintPlane(out, "pos", json["pos"], false);
  out << "\n";
  PrintSharedRecords(out, json);
}

void PrintShot(std::ostream& out, const ReportJson& json) {
  out << "  capture (.shot): type " << json["type"].get<std::string>() << " ("
      << json["typeName"].get<std::string>() << ")\n";
  PrintPlane(out, "image", json["image"], true);
  out << "\n";
  out << "  color: " << (json.contains("color") ? Text(json["color"]) : "absent") << "\n";
  PrintSharedRecords(out, json);
  PrintRecord(out, json, "pattern",
              {"type", "interval_x", "interval_y", "loc_x", "loc_y", "lighted_led_w",
               "lighted_led_h"});
  PrintRecord(out, json, "device", {"id", "cam_type", "lens_id", "lens_type"});
}

}  // namespace

ReportJson InspectFile(const std::string& file) {
  // The loaders check the name's extension themselves; this only picks one.
  const std::string extension = std::filesystem::path(file).extension().string();
  if (extension == ".aimhue") return InspectResults(file);
  if (extension == ".meter") return InspectMeter(file);
  if (extension == ".shot") return InspectShot(file);
  if (extension == ".corr") return InspectCorrection(file, std::nullopt);
  throw CommandError(kExitUsage, "unknown kind of file: expected a name ending in .aimhue, .meter,"
                                 " .shot or .corr");
}

void PrintInspection(std::ostream& out, const ReportJson& inspection) {
  out << Printable(inspection["file"].get<std::string>()) << "\n";
  const std::string kind = inspection["kind"].get<std::string>();
  if (kind == "aimhue") {
    PrintResults(out, inspection);
  } else if (kind == "meter") {
    PrintMeter(out, inspection);
  } else if (kind == "corr" || kind == "corr-led") {
    PrintCorrectionInspection(out, inspection);
  } else {
    PrintShot(out, inspection);
  }
}

}  // namespace tool
}  // namespace aimhue
