// A minimal host program built against the installed package.
#include <aimhue/aimhue.h>

#include <cstdio>

int main() {
  AimhueHandle handle = nullptr;
  if (AimhueCreateHandle(&handle) != aimhue::kOk || handle == nullptr) return 1;
  const float ends[4] = {0.9f, 0.9f, 0.9f, 0.9f};
  const int status = AimhueSetPercentEnd(handle, ends);
  float targets[12];
  float fractions[4];
  AimhueGet(handle, targets, fractions);
  AimhueDestroyHandle(handle);
  std::printf("consumer: aimhue %s, status %d (%s), fraction %.1f\n", AIMHUE_VERSION_STRING,
              status, aimhue::StatusText(status), fractions[0]);
  return status == aimhue::kOk ? 0 : 1;
}
