# Builds tal_bench in the preset release; sourced by bash behind Scripts/setup.sh.
lock
need_packages "${build_packages[@]}" libbenchmark-dev valgrind
configure_preset release TAL_BUILD_BENCHMARKS
build_preset release tal_bench tal_bench_empty talctl
grep -qx 'TAL_BUILD_BENCHMARKS:BOOL=ON' "$root/build/release/CMakeCache.txt" || die "build/release is without benchmarks"
unlock
tal_bench=$root/build/release/bin/tal_bench
