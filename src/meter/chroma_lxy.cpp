#include "meter/chroma_lxy.h"

namespace aimhue {

bool IsEmpty(const ChromaLxy& set) { return set.L.empty() || set.x.empty() || set.y.empty(); }

}  // namespace aimhue
