# Thin wrappers around CMake/CTest. `make run` opens KSETUP on a fresh demo program directory,
# `make test` builds and runs every test, `make bench` prints the benchmark figures,
# `make test-sanitize` runs the tests on a sanitized build, `make fuzz` fuzzes the record files
# and the template processor.
BUILD ?= build
CMAKE_FLAGS ?=
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
FUZZ_TIME ?= 60
# clang and its runtime libraries (libFuzzer, the clang sanitizers) are for `make fuzz`.
PACKAGES := cmake ninja-build g++ libncurses-dev libgtest-dev tmux strace clang libclang-rt-dev

.PHONY: all deps configure build run run-new test test-sanitize fuzz bench format clean

all: build

deps:
	@missing=""; for p in $(PACKAGES); do \
	  dpkg -s $$p >/dev/null 2>&1 || missing="$$missing $$p"; done; \
	if [ -n "$$missing" ]; then \
	  if [ "$$(id -u)" = 0 ]; then \
	    echo "Installing:$$missing"; \
	    apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $$missing; \
	  else \
	    echo "Missing Debian packages. Run as root:  apt-get install -y$$missing"; exit 1; \
	  fi; \
	fi

configure: deps
	@test -f $(BUILD)/build.ninja || cmake -S . -B $(BUILD) -G Ninja $(CMAKE_FLAGS)

build: configure
	cmake --build $(BUILD)

# A fresh demo program directory with a main address set, then KSETUP on it.
run: build
	$(BUILD)/mkdemo $(BUILD)/demo
	KESTRA=$(CURDIR)/$(BUILD)/demo $(BUILD)/ksetup

# KSETUP on an empty program directory: it offers to create setup.ksx.
run-new: build
	rm -rf $(BUILD)/new && mkdir -p $(BUILD)/new
	KESTRA=$(CURDIR)/$(BUILD)/new $(BUILD)/ksetup

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j2

# Every test again, on a g++ build with AddressSanitizer and UndefinedBehaviorSanitizer. -O1
# and line tables only: it compiles in half the time of -O2 -g, reports still name file and line.
# The kill test is left out: it checks files on disk, which a sanitizer has nothing to add to.
test-sanitize: deps
	@test -f $(ASAN_BUILD)/build.ninja || CC=gcc CXX=g++ cmake -S . -B $(ASAN_BUILD) -G Ninja \
	  -DKS_SANITIZE=ON -DKS_WERROR=ON -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g1"
	cmake --build $(ASAN_BUILD) --target ks_tests ksetup mkdemo helpdoc
	ctest --test-dir $(ASAN_BUILD) --output-on-failure -j2 -E '^kill_test$$'

# The fuzz targets for $(FUZZ_TIME) seconds each, starting from fuzz/corpus/ (the record
# database), fuzz/corpus-lists/ (the group and magic file name lists) and
# fuzz/corpus-templates/ (templates with the caller's data), and the import readers from
# fuzz/corpus-import-<format>/ (AREAFILE.GE, FASTECHO.CFG, FMAIL.AR, the text files). New
# inputs go to a temporary directory; a failing input is saved in $(FUZZ_BUILD)/.
fuzz: deps
	@test -f $(FUZZ_BUILD)/build.ninja || CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -G Ninja \
	  -DKS_FUZZ=ON -DKS_WERROR=ON
	cmake --build $(FUZZ_BUILD) --target dbase_fuzz lists_fuzz template_fuzz \
	  import_gecho_fuzz import_fastecho_fuzz import_fmail_fuzz import_text_fuzz
	@d=$$(mktemp -d) && \
	$(FUZZ_BUILD)/dbase_fuzz -max_total_time=$(FUZZ_TIME) -max_len=8192 -print_final_stats=1 \
	  -artifact_prefix=$(FUZZ_BUILD)/ $$d fuzz/corpus; s=$$?; rm -rf $$d; exit $$s
	@d=$$(mktemp -d) && \
	$(FUZZ_BUILD)/lists_fuzz -max_total_time=$(FUZZ_TIME) -max_len=16384 -print_final_stats=1 \
	  -artifact_prefix=$(FUZZ_BUILD)/ $$d fuzz/corpus-lists; s=$$?; rm -rf $$d; exit $$s
	@d=$$(mktemp -d) && \
	$(FUZZ_BUILD)/template_fuzz -max_total_time=$(FUZZ_TIME) -max_len=65536 -timeout=20 \
	  -print_final_stats=1 -artifact_prefix=$(FUZZ_BUILD)/ $$d fuzz/corpus-templates; \
	  s=$$?; rm -rf $$d; exit $$s
	@for f in gecho fastecho fmail text; do d=$$(mktemp -d) && \
	$(FUZZ_BUILD)/import_$${f}_fuzz -max_total_time=$(FUZZ_TIME) -max_len=16384 -timeout=10 \
	  -print_final_stats=1 -artifact_prefix=$(FUZZ_BUILD)/ $$d fuzz/corpus-import-$$f; \
	  s=$$?; rm -rf $$d; [ $$s = 0 ] || exit $$s; done

bench: build
	$(BUILD)/bench_startup $(BUILD)/ksetup $(BUILD)
	$(BUILD)/bench_dbase
	$(BUILD)/bench_systems
	$(BUILD)/bench_groups
	$(BUILD)/bench_list
	$(BUILD)/bench_propagation
	$(BUILD)/bench_editor
	$(BUILD)/bench_template
	$(BUILD)/bench_export
	$(BUILD)/bench_import

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD)
