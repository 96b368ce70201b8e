# Thin wrapper over the CMake presets.
.PHONY: all deps build test asan arm-test demo clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	cmake --preset default
	cmake --build --preset default

test: build
	ctest --preset default

asan: deps
	cmake --preset asan
	cmake --build --preset asan
	ctest --preset asan

arm-test:
	@scripts/install-deps.sh --with-arm
	cmake --preset arm
	cmake --build --preset arm
	ctest --preset arm

demo: build
	@if [ -x build/default/tools/smsutil/smsutil ]; then scripts/demo.sh build/default/tools/smsutil/smsutil; \
	else echo "smsutil: not yet"; fi

clean:
	rm -rf build
