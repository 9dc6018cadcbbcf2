#!/usr/bin/env bash
# Checks the dynamic symbol table of libaimhue: every exported Aimhue*
# function is there under its plain, undecorated name, and nothing is
# exported beyond the C interface, the log channel and namespace aimhue.
set -euo pipefail
library=$1

defined=$(nm -D --defined-only "$library" | awk '{print $3}' | sed 's/@.*//')

expected=(
  AimhueCreateHandle AimhueDestroyHandle AimhueRelease AimhueSetNGThresh
  AimhueSetPercentEnd AimhueSetPercentCalcChroma AimhueGet
  AimhueSave AimhueLoad AimhueToBuffer AimhueFromBuffer AimhueGetBufferSize
  AimhueVConcatMeter AimhueCalcPercentOfTarget AimhueCalcWhite AimhueCalcPercentNG
  AimhueJudgeNG AimhueSearch
  AimhueGetResults AimhueSetTargets
  AimhueCreateScreen AimhueDestroyScreen AimhueScreenSetPrimary AimhueScreenSize
  AimhueSearchScreen AimhueCalcPercentNGScreen AimhueJudgeNGScreen AimhueCalcScreenCoverage
  AimhueSetNGLimitFromCoverage AimhueJudgeCoverage AimhueGetScreenPlanes AimhueScreenTakePrimary
)
missing=0
for name in "${expected[@]}"; do
  if ! grep -qx "$name" <<<"$defined"; then
    echo "missing undecorated export: $name"
    missing=1
  fi
done

stray=$(grep -v -E '^(Aimhue|PlumeLog)' <<<"$defined" | c++filt |
  grep -v -E '^(typeinfo for |typeinfo name for |vtable for )?aimhue::' || true)
if [ -n "$stray" ]; then
  echo "symbols exported outside the public interface:"
  echo "$stray"
  missing=1
fi
[ "$missing" -eq 0 ] && echo "${#expected[@]} Aimhue functions exported undecorated"
exit "$missing"
