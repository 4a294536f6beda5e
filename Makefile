# Set-up, build, run and test in one command each, on a fresh Debian 12 machine.
#   make run    installs what is missing, builds, and starts the program
#   make test   installs what is missing, builds, and runs every test (the Windows build's too)
#   make windows   cross-builds the core and tonalmancer-cli.exe for Windows (build/windows)
#   make package   builds the Debian package build/package/tonalmancer_<version>_amd64.deb
#   make install   installs a Release build into PREFIX (default /usr/local; any folder you can
#                  write to works without root, e.g. make install PREFIX=~/.local)
# PRESET selects the CMake preset (dev, asan, ci).

PRESET ?= dev
BUILD_DIR := build/$(PRESET)
PREFIX ?= /usr/local

.PHONY: all deps configure build run test fuzz-smoke bench format clean release package install \
	windows windows-test

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
	@$(MAKE) --no-print-directory windows-test
	@$(MAKE) --no-print-directory fuzz-smoke

# The core and the command-line program cross-built for Windows with mingw-w64; their tests run
# under Wine, and what the Windows program writes is compared with this build's Linux program.
windows: deps
	@cmake --preset windows -DTM_NATIVE_CLI=$(CURDIR)/$(BUILD_DIR)/bin/tonalmancer-cli >/dev/null
	@cmake --build --preset windows

windows-test: windows
	@ctest --preset windows

# Every file reader that takes untrusted input has a libFuzzer target; each gets a short run.
fuzz-smoke: deps
	@cmake --preset fuzz >/dev/null
	@cmake --build --preset fuzz --target fuzzers
	@tools/fuzz-smoke.sh build/fuzz

bench: deps
	@cmake --preset bench >/dev/null
	@cmake --build --preset bench
	@mkdir -p build/bench/results
	@for b in build/bench/bin/bench_*; do $$b --benchmark_repetitions=5 \
		--benchmark_display_aggregates_only=true --benchmark_out_format=json \
		--benchmark_out=build/bench/results/$$(basename $$b).json; done

# The programs as they are shipped: a Release build of its own (preset "package").
release: deps
	@cmake --preset package >/dev/null
	@cmake --build --preset package

package: release
	@cmake --build --preset package --target package

# The desktop finds the new file types once the prefix's MIME database is rebuilt.
install: release
	@cmake --install build/package --prefix "$(PREFIX)"
	@if [ -z "$$DESTDIR" ] && command -v update-mime-database >/dev/null; then \
		update-mime-database "$(PREFIX)/share/mime"; fi

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf build
