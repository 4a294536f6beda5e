# Set-up, build, run and test in one command each, on a fresh Debian 12 machine.
#   make run    installs what is missing, builds, and starts the program
#   make test   installs what is missing, builds, and runs every test
# PRESET selects the CMake preset (dev, asan, ci).

PRESET ?= dev
BUILD_DIR := build/$(PRESET)

.PHONY: all deps configure build run test bench fuzz format clean

all: build

deps:
	@tools/install-deps.sh

configure: deps
	@cmake --preset $(PRESET) >/dev/null

build: configure
	@cmake --build --preset $(PRESET)

run: build
	$(BUILD_DIR)/bin/tonalmancer-cli --help

test: build
	@ctest --preset $(PRESET)

bench: deps
	@cmake --preset bench >/dev/null
	@cmake --build --preset bench
	@for b in build/bench/bin/bench_*; do $$b --benchmark_repetitions=5 --benchmark_report_aggregates_only=true; done

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf build
