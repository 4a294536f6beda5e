# Set-up, build, run and test in one command each, on a fresh Debian 12 machine.
#   make run    installs what is missing, builds, and starts the program
#   make test   installs what is missing, builds, and runs every test
#   make package   builds the Debian package build/package/tonalmancer_<version>_amd64.deb
#   make install   installs a Release build into PREFIX (default /usr/local; any folder you can
#                  write to works without root, e.g. make install PREFIX=~/.local)
# PRESET selects the CMake preset (dev, asan, ci).

PRESET ?= dev
BUILD_DIR := build/$(PRESET)
PREFIX ?= /usr/local

.PHONY: all deps configure build run test fuzz-smoke bench format clean release package install

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
