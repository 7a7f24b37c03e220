# Lumeth Admin: the two commands are `make run` and `make test`.
BUILD ?= build
CLANG_BUILD ?= build-clang
JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 20

.PHONY: all deps configure build run test unit package sanitize fuzz bench format clean

all: build

deps:
	@./scripts/install-deps

configure: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null

build: configure
	cmake --build $(BUILD) -j$(JOBS)

# The product's main job.
run: build
	@./scripts/run-demo $(BUILD)

# Everything: the ctest suite, then the clang sanitizer build of the core tests
# and the bounded fuzz stage.
test: unit sanitize fuzz

# The package is built first so the suite also checks it (package_contents).
unit: package
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

# The Debian package, lumeth-admin_<version>_<arch>.deb in $(BUILD).
package: build
	cd $(BUILD) && cpack -G DEB

$(CLANG_BUILD)/CMakeCache.txt:
	cmake -S . -B $(CLANG_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	    -DCMAKE_CXX_COMPILER=clang++ -DLUMETH_CORE_ONLY=ON \
	    -DLUMETH_SANITIZE=ON -DLUMETH_FUZZ=ON >/dev/null

sanitize: deps $(CLANG_BUILD)/CMakeCache.txt
	cmake --build $(CLANG_BUILD) -j$(JOBS)
	cd $(CLANG_BUILD) && ctest --output-on-failure -j$(JOBS)

fuzz: sanitize
	./scripts/run-fuzz $(CLANG_BUILD) $(FUZZ_SECONDS)

bench: build
	./scripts/run-bench $(BUILD)

format:
	find model files link app ui tools tests bench fuzz -name '*.cpp' -o -name '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(CLANG_BUILD)
