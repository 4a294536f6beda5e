# Set-up, build, run and test in one command each, on a fresh Debian 12 machine.
#   make run    installs what is missing, builds, and starts the program
#   make test   installs what is missing, builds, and runs every test
# PRESET selects the CMake preset (dev, asan, ci).

PRESET ?= dev
BUILD_DIR := build/$(PRESET)

.PHONY: all deps configure build run test fuzz-smoke bench format clean

all: build

deps:
	@tools/install-deps.sh

configure: deps
	@cmake --preset $(PRESET) >/dev/null

build: configure
	@cmake --build --preset $(PRESET)

run: build
	$(BUILD_DIR)/bin/tonalmancer

test: build
	@ctest --preset $(PRESET)
	@$(MAKE) --no-print-directory fuzz-smoke

# Every file reader that takes untrusted input has a libFuzzer target; each gets a short run.
fuzz-smoke: deps
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz --target fuzzers
	@tools/fuzz-smoke.sh build/fuzz

bench: deps
	@cmake --preset bench >/dev/null
	@cmake --build --preset bench
	@for b in build/bench/bin/bench_*; do $$b --benchmark_repetitions=5 --benchmark_report_aggregates_only=true; done

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf build
