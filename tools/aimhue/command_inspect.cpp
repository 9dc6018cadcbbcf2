// aimhue inspect: what a result, meter or capture file holds.
#include <aimhue/led_meter.h>

#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <iostream>
#include <memory>

#include "command_error.h"
#include "commands.h"
#include "engine_handle.h"

namespace aimhue {
namespace tool {
namespace {

struct InspectOptions {
  std::vector<std::string> files;
  bool json = false;
};

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string TypeName(uint32_t type) {
  switch (type) {
    case CIE_X: return "CIE_X";
    case CIE_Y: return "CIE_Y";
    case CIE_Z: return "CIE_Z";
    default: return "invalid";
  }
}

// An OpenCV element type as "32F", "8UC2", ...
std::string ElementType(int type) {
  static const char* const kDepths[] = {"8U", "8S", "16U", "16S", "32S", "32F", "64F", "16F"};
  const int channels = CV_MAT_CN(type);
  std::string text = kDepths[CV_MAT_DEPTH(type)];
  if (channels > 1) text += "C" + std::to_string(channels);
  return text;
}

ReportJson PlaneJson(const cv::Mat& plane) {
  return ReportJson{{"rows", plane.rows}, {"cols", plane.cols},
                    {"type", plane.empty() ? std::string("empty") : ElementType(plane.type())}};
}

// Statistics of a 32-bit float plane over its finite values.
struct PlaneStatistics {
  float min = NAN;
  float max = NAN;
  double mean = NAN;
  int64_t zeros = 0;
  int64_t nonFinite = 0;
};

PlaneStatistics Statistics(const cv::Mat& plane) {
  PlaneStatistics stats;
  if (plane.empty() || plane.type() != CV_32FC1) return stats;
  double sum = 0.0;
  int64_t finite = 0;
  for (int row = 0; row < plane.rows; ++row) {
    const float* values = plane.ptr<float>(row);
    for (int col = 0; col < plane.cols; ++col) {
      const float value = values[col];
      if (!std::isfinite(value)) {
        ++stats.nonFinite;
        continue;
      }
      if (value == 0.0f) ++stats.zeros;
      stats.min = finite == 0 ? value : std::min(stats.min, value);
      stats.max = finite == 0 ? value : std::max(stats.max, value);
      sum += value;
      ++finite;
    }
  }
  if (finite > 0) stats.mean = sum / static_cast<double>(finite);
  return stats;
}

ReportJson InspectMeter(const std::string& file) {
  LedMeter meter;
  CheckStatus(meter.Load(file), "cannot load meter");
  const PlaneStatistics stats = Statistics(meter.chroma);
  const int64_t marked =
      meter.state.empty() || meter.state.type() != CV_8UC1 ? 0 : cv::countNonZero(meter.state & 1);
  ReportJson json{{"file", file}, {"kind", "meter"}, {"color", meter.color},
                  {"type", meter.type}, {"typeName", TypeName(meter.type)}};
  json["chroma"] = PlaneJson(meter.chroma);
  json["chroma"]["min"] = stats.min;
  json["chroma"]["max"] = stats.max;
  json["chroma"]["mean"] = static_cast<float>(stats.mean);
  json["chroma"]["zeros"] = stats.zeros;
  json["chroma"]["nonFinite"] = stats.nonFinite;
  json["state"] = PlaneJson(meter.state);
  json["state"]["markedDead"] = marked;
  json["pos"] = PlaneJson(meter.pos);
  if (meter.partition) {
    const Partition& p = *meter.partition;
    json["partition"] = {{"x", p.x}, {"y", p.y}, {"w", p.w}, {"h", p.h},
                         {"screen_w", p.screen_w}, {"screen_h", p.screen_h}};
  }
  if (meter.led_panel) {
    const LedPanel& p = *meter.led_panel;
    json["ledPanel"] = {{"type", p.type}, {"layout", p.layout}, {"subpixel_type", p.subpixel_type},
                        {"w", p.w}, {"h", p.h}, {"pixel_pitch", p.pixel_pitch}};
  }
  if (meter.layer) {
    const Layer& l = *meter.layer;
    json["layer"] = {{"index", l.index}, {"linear_norms", l.linear_norms}, {"value", l.value}};
  }
  if (meter.capture) {
    const Capture& c = *meter.capture;
    json["capture"] = {{"exposure", c.exposure}, {"gain", c.gain}, {"aperture", c.aperture},
                       {"microfocus", c.microfocus}, {"filter", c.filter}};
  }
  return json;
}

ReportJson InspectResults(const std::string& file) {
  const Handle handle = LoadHandle(file);
  const EngineImage image = ReadEngineImage(handle.get());
  ReportJson json{{"file", file}, {"kind", "aimhue"}};
  json["fractions"] = ReportJson::array();
  for (const float fraction : image.fractions) json["fractions"].push_back(fraction);
  json["ngLimit"] = image.ngLimit;
  json["targets"] = TargetBlockJson(image.target);
  json["searchEnd"] = TargetBlockJson(image.searchEnd);
  json["searchStart"] = TargetBlockJson(image.searchStart);
  return json;
}

ReportJson Inspect(const std::string& file) {
  if (EndsWith(file, ".aimhue")) return InspectResults(file);
  if (EndsWith(file, ".meter")) return InspectMeter(file);
  if (EndsWith(file, ".shot")) {
    throw CommandError(kExitLibrary, "capture (.shot) files are not supported yet by this"
                                     " version of the tool");
  }
  throw CommandError(kExitUsage, "unknown kind of file: expected a name ending in .aimhue, .meter"
                                 " or .shot");
}

std::string Text(const ReportJson& value) {
  if (value.is_number_float()) return FloatText(value.get<float>());
  if (value.is_string()) return value.get<std::string>();
  return value.dump();
}

// The fields of a record in their stored order (the JSON object sorts them).
void PrintRecord(std::ostream& out, const char* title, const ReportJson& record,
                 std::initializer_list<const char*> fields) {
  out << "  " << title << ":";
  for (const char* field : fields) out << " " << field << " " << Text(record[field]);
  out << "\n";
}

void PrintPlane(std::ostream& out, const char* title, const ReportJson& plane) {
  char line[160];
  std::snprintf(line, sizeof line, "  %-10s %d x %d %s", title, plane["rows"].get<int>(),
                plane["cols"].get<int>(), plane["type"].get<std::string>().c_str());
  out << line;
}

void PrintInspection(std::ostream& out, const ReportJson& json) {
  out << json["file"].get<std::string>() << "\n";
  if (json["kind"] == "aimhue") {
    out << "  engine results (.aimhue)\n";
    out << "  fractions  ";
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
    return;
  }
  out << "  meter (.meter): colour " << json["color"].get<uint32_t>() << ", type "
      << json["type"].get<uint32_t>() << " (" << json["typeName"].get<std::string>() << ")\n";
  const ReportJson& chroma = json["chroma"];
  PrintPlane(out, "chroma", chroma);
  out << ": min " << Text(chroma["min"]) << ", max " << Text(chroma["max"]) << ", mean "
      << Text(chroma["mean"]) << "; " << chroma["zeros"].get<int64_t>() << " zero, "
      << chroma["nonFinite"].get<int64_t>() << " not finite\n";
  PrintPlane(out, "state", json["state"]);
  out << ": " << json["state"]["markedDead"].get<int64_t>() << " marked dead\n";
  PrintPlane(out, "pos", json["pos"]);
  out << "\n";
  const auto print = [&](const char* record, std::initializer_list<const char*> fields) {
    if (json.contains(record)) {
      PrintRecord(out, record, json[record], fields);
    } else {
      out << "  " << record << ": absent\n";
    }
  };
  print("partition", {"x", "y", "w", "h", "screen_w", "screen_h"});
  print("ledPanel", {"type", "layout", "subpixel_type", "w", "h", "pixel_pitch"});
  print("layer", {"index", "linear_norms", "value"});
  print("capture", {"exposure", "gain", "aperture", "microfocus", "filter"});
}

int RunInspect(const InspectOptions& options) {
  int exit_status = kExitOk;
  ReportJson all = ReportJson::array();
  for (const std::string& file : options.files) {
    try {
      const ReportJson json = Inspect(file);
      if (options.json) {
        all.push_back(json);
      } else {
        PrintInspection(std::cout, json);
      }
    } catch (const CommandError& error) {
      std::cerr << "aimhue inspect: " << file << ": " << error.what() << "\n";
      exit_status = std::max(exit_status, error.exit_status());
      if (options.json) all.push_back({{"file", file}, {"error", error.what()}});
    }
  }
  if (options.json) std::cout << all.dump(2) << "\n";
  return exit_status;
}

}  // namespace

void AddInspectCommand(CLI::App& app, int& exit_status) {
  auto options = std::make_shared<InspectOptions>();
  CLI::App* command = app.add_subcommand(
      "inspect",
      "Show what result, meter and capture files hold.\n\n"
      "For a .aimhue file: the interpolation fractions, the NG limit, the targets and both"
      " search results. For a .meter file: colour and type, the size and element type of its"
      " planes, statistics of its values (minimum, maximum and mean of the finite values, zero"
      " and non-finite counts), the LEDs marked dead in its state plane, and its partition, LED"
      " panel, layer and capture records. Every file is inspected even when an earlier one"
      " fails. Capture (.shot) files are not supported yet.");
  command->add_option("files", options->files, "Files to inspect.")
      ->required()
      ->type_name("FILE...");
  command->add_flag("--json", options->json,
                    "Print one JSON array with an object per file instead of text; a file that"
                    " cannot be read gives an object with an \"error\" text.");
  command->footer(
      "Examples:\n"
      "  aimhue inspect result.aimhue meters/red_X.meter\n"
      "  aimhue inspect --json meters/*.meter > meters.json\n\n"
      "Exit status:\n"
      "  0  every file was inspected\n"
      "  2  a file name without a known extension\n"
      "  3  a file could not be loaded (the message names the file and the status)\n"
      "  The highest status of all files is returned.");
  command->callback([options, &exit_status] { exit_status = RunInspect(*options); });
}

}  // namespace tool
}  // namespace aimhue
