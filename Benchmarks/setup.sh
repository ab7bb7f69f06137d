# Builds tal_bench in the preset release; sourced by bash behind Scripts/setup.sh.
lock
need_packages "${build_packages[@]}" libbenchmark-dev valgrind
if ! grep -qx 'TAL_BUILD_BENCHMARKS:BOOL=ON' "$root/build/release/CMakeCache.txt" 2>/dev/null; then
  say "configuring build/release with benchmarks"
  (cd "$root" && cmake --preset release -DTAL_BUILD_BENCHMARKS=ON) >&2 || die "cannot configure the preset 'release'"
fi
build_preset release
unlock
tal_bench=$root/build/release/bin/tal_bench
