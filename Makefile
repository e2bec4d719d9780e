# Thin wrappers around CMake/CTest. `make run` opens KSETUP on a fresh demo program directory,
# `make test` builds and runs every test, `make bench` prints the benchmark figures.
BUILD ?= build
CMAKE_FLAGS ?=
PACKAGES := cmake ninja-build g++ libncurses-dev libgtest-dev tmux

.PHONY: all deps configure build run run-new test bench format clean

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

bench: build
	$(BUILD)/bench_startup $(BUILD)/ksetup $(BUILD)

format:
	clang-format -i $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf $(BUILD)
