# Commands for people. Each sets up what it needs; the work is in tools/ and the CMake presets.
.PHONY: help demo test arm64 wheel packages check-abi accuracy asan check-deep bench bench-pages benchmark scorecard site check-format tidy fuzz clean

help:
	@echo "make demo          make scenes, inspect them, show the particles and the annotated pictures"
	@echo "make test          build and run all tests"
	@echo "make arm64         build for arm64 and check its results under qemu"
	@echo "make wheel         make the Python wheel with the library in it, in dist/"
	@echo "make packages      make the Debian packages, in dist/, and try them in a clean system"
	@echo "make check-abi     look whether programs built with the last release still run"
	@echo "make accuracy      print how near measures and edges come to the truth, as the tables in docs/"
	@echo "make asan          build and run all tests under the address and undefined-behaviour sanitizers"
	@echo "make bench         run the benchmarks beside their peers, roughly"
	@echo "make bench-pages   run them in full and write docs/benchmarks from the results"
	@echo "make scorecard     read bar codes and gauges spoilt more and more, beside peers: docs/scorecard.md"
	@echo "make site          run all programs of the pages and build the site with what they made: build/site"
	@echo "make check-format  check the layout of the sources"
	@echo "make tidy          look for suspicious code"
	@echo "make check-deep    fuzzers, sanitizers and all builds for hours; writes docs/robustness.md"
	@echo "make fuzz          run the fuzz targets for some seconds each"
	@echo "make clean         remove what was built and the demonstration's files"

demo:
	@tools/demo.sh

test:
	@tools/test.sh release

arm64:
	@tools/test_arm64.sh

wheel:
	@tools/setup.sh
	python3 python/build_wheel.py dist

packages:
	@tools/setup.sh --packages
	tools/packages.sh
	tests/packages/run.sh dist

check-abi:
	@tools/setup.sh --packages
	tools/check_abi.sh

accuracy:
	@tools/setup.sh
	cmake --preset release
	cmake --build --preset release --target orlune_accuracy orlune_edge_accuracy
	build/release/tools/orlune_accuracy
	build/release/tools/orlune_edge_accuracy

asan:
	@tools/test.sh asan

benchmark:
	@tools/setup.sh --benchmarks
	cmake --preset release -DPTK_BUILD_BENCHMARKS=ON
	cmake --build --preset release --target orlune_benchmark

bench: benchmark
	build/release/benchmarks/orlune_benchmark --quick

bench-pages: benchmark
	build/release/benchmarks/orlune_benchmark --out docs/benchmarks/run.csv --pages docs/benchmarks

# With PHOTOS=folder also the photographs that its truth.tsv tells of.
scorecard:
	@tools/setup.sh --scorecard
	cmake --preset release
	cmake --build --preset release --target orlune_scorecard
	build/release/tools/orlune_scorecard tests/data/barcodes/printed.tsv docs/scorecard.md $(PHOTOS)

site:
	@tools/setup.sh --site
	tools/site/site.sh

check-format:
	@tools/setup.sh --check-tools
	git ls-files '*.cpp' '*.h' '*.c' | xargs clang-format --dry-run --Werror

tidy:
	@tools/setup.sh --check-tools
	tools/static_analysis.sh

fuzz:
	@tools/setup.sh --deep-check
	tools/fuzz.sh

check-deep:
	@tools/setup.sh --deep-check
	tools/check_deep.sh

clean:
	rm -rf build demo
