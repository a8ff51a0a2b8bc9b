# Front door of the project: `make` builds build/tarn, `make test` runs every
# test in a release build and in a sanitizer build, `make run` runs an example,
# `make bench` runs the benchmarks against their peers.
BUILD  := build
ASAN   := build-asan
JOBS   ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE  ?= cmake

.PHONY: all test test-release test-asan run bench clean

all: $(BUILD)/CMakeCache.txt
	$(CMAKE) --build $(BUILD) -j$(JOBS)

$(BUILD)/CMakeCache.txt:
	$(CMAKE) -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release

$(ASAN)/CMakeCache.txt:
	$(CMAKE) -S . -B $(ASAN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARN_SANITIZE=ON

test: test-release test-asan

test-release: all
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

test-asan: $(ASAN)/CMakeCache.txt
	$(CMAKE) --build $(ASAN) -j$(JOBS)
	cd $(ASAN) && ASAN_OPTIONS=detect_leaks=0 ctest --output-on-failure -j$(JOBS)

run: all
	./$(BUILD)/tarn examples/hello.tarn

bench: all
	bench/run.sh

clean:
	rm -rf $(BUILD) $(ASAN)
