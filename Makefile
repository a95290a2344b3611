# Entry points. Each target installs what is missing (Debian packages, as root) first.
BUILD      ?= build
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
JOBS       ?= $(shell nproc)
CMAKE_GEN  := -G Ninja

.PHONY: all deps build test demo bench fuzz format clean
.PHONY: docs

all: build

deps:
	@bash scripts/install-deps.sh

build: deps
	cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j $(JOBS)

# Every test, under two locales, then once more built with ASan/UBSan.
test: deps
	@bash scripts/run-tests.sh

demo: build
	@bash scripts/run-demo.sh $(BUILD)

bench: deps
	cmake -S . -B $(BUILD)-bench $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DVELMORA_BUILD_TESTS=OFF -DVELMORA_BUILD_BENCH=ON
	cmake --build $(BUILD)-bench -j $(JOBS)
	QT_QPA_PLATFORM=offscreen $(BUILD)-bench/bench/bench_keys
	QT_QPA_PLATFORM=offscreen $(BUILD)-bench/bench/bench_validate
	QT_QPA_PLATFORM=offscreen $(BUILD)-bench/bench/bench_settings

fuzz: deps
	@bash scripts/run-fuzz.sh $(FUZZ_BUILD)

# The API reference (Doxygen) in $(BUILD)/docs/html.
docs: deps
	cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) --target docs

format:
	clang-format -i $$(git ls-files '*.h' '*.cpp')

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD) $(BUILD)-bench

# A Debian package of the library, libvelmora_<version>_<arch>.deb in $(PACKAGE_BUILD):
# a build folder of its own, configured for /usr so that the library lands in Debian's
# multiarch folder, without the tests.
PACKAGE_BUILD ?= $(BUILD)-package
.PHONY: package clean-package
package: deps
	cmake -S . -B $(PACKAGE_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DCMAKE_INSTALL_PREFIX=/usr -DVELMORA_BUILD_TESTS=OFF
	cmake --build $(PACKAGE_BUILD) -j $(JOBS)
	rm -f $(PACKAGE_BUILD)/*.deb
	cd $(PACKAGE_BUILD) && cpack -G DEB
	dpkg-deb -c $(PACKAGE_BUILD)/*.deb

clean: clean-package
clean-package:
	rm -rf $(PACKAGE_BUILD)
