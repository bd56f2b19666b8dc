# The commands of this tree. Each sets itself up first: on a fresh Debian machine `make demo` or `make test` is enough.
SHELL := /bin/bash
.SHELLFLAGS := -eu -o pipefail -c
.DEFAULT_GOAL := help
.DELETE_ON_ERROR:

PREFIX ?= /usr/local
FUZZ_SECONDS ?= 30
JOBS := $(shell nproc)

# ccache: our precompiled headers, and hits from one checkout to the next.
export CCACHE_SLOPPINESS := pch_defines,time_macros
export CCACHE_BASEDIR := $(CURDIR)
export CCACHE_NOHASHDIR := 1

SOURCES = $$(git ls-files -- '*.h' '*.cpp')

define build
cmake --preset $(1) >build/$(1).configure.log 2>&1 || { cat build/$(1).configure.log; exit 1; }
cmake --build --preset $(1)
endef

.PHONY: help setup build build-windows demo demo-windows test test-windows test-asan test-tsan bench fuzz format check-format lint install clean

help: ## this list
	@sed -n 's/^\([a-z-]*\):[^#]*## /\1\t/p' $(MAKEFILE_LIST) | while IFS=$$'\t' read -r name text; do \
	    printf '  make %-14s %s\n' "$$name" "$$text"; done

setup:
	@scripts/setup
	@mkdir -p build

build: setup ## the module, the decoder substitute, the host and the tests, in build/native
	@$(call build,native)

build-windows: setup ## the same for Windows by mingw-w64, in build/windows
	@scripts/setup --windows
	@$(call build,windows)

demo: build ## a sample clip, opened through the module: pictures, sound and a report in out/
	@scripts/demo native out

demo-windows: build-windows ## the same by the Windows programs under Wine, in out-windows/
	@trap 'cmake/wine.sh "$(CURDIR)/build/windows/wine" --stop' EXIT; scripts/demo windows out-windows

test: build ## the test suite
	@ctest --preset native -j$(JOBS)

# What the two targets do is compared, so both are built.
test-windows: build build-windows ## the same suite of the Windows programs, under Wine without a display
	@ctest --preset windows-test -j$(JOBS)

test-asan: setup ## the same under AddressSanitizer and UndefinedBehaviorSanitizer
	@$(call build,asan)
	@ctest --preset asan -j$(JOBS)

test-tsan: setup ## the same under ThreadSanitizer
	@$(call build,tsan)
	@ctest --preset tsan -j$(JOBS)

bench: setup ## the benchmarks
	@$(call build,bench)
	@for b in build/bench/bin/bench_*; do echo "== $$b"; "$$b"; done

fuzz: setup ## each fuzzer for FUZZ_SECONDS (30)
	@$(call build,fuzz)
	@for f in build/fuzz/bin/fuzz_*; do echo "== $$f"; \
	    name=$${f##*/}; mkdir -p "build/fuzz/corpus/$$name"; \
	    seeds=fuzz/seeds/$${name#fuzz_}; [ -d "$$seeds" ] || seeds=; \
	    "$$f" -max_total_time=$(FUZZ_SECONDS) -print_final_stats=1 "build/fuzz/corpus/$$name" $$seeds; done

format: setup ## formats every source file
	@clang-format-14 -i $(SOURCES)

check-format: setup ## fails when `make format` would change something
	@clang-format-14 --dry-run --Werror $(SOURCES)

# Without what only the other compiler reads: its precompiled headers and the names of some of its warnings.
lint: build ## clang-tidy over every source file
	@mkdir -p build/lint
	@sed -e 's/-Winvalid-pch -include [^ ]*//' -e 's/ -Wno-stringop-overread//' -e 's/ -Werror//' \
	    build/native/compile_commands.json >build/lint/compile_commands.json
	@run-clang-tidy-14 -quiet -p build/lint "$(CURDIR)/(?!build/).*\.cpp" 2>&1 | \
	    { ! grep -E -A4 '(error|warning):'; }

install: build ## into PREFIX (/usr/local)
	@cmake --install build/native --prefix "$(PREFIX)"

clean: ## removes build/, out/ and out-windows/
	@rm -rf build out out-windows
