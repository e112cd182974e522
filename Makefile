# The two everyday commands. Both install what is missing first, so they work on a fresh
# machine from a fresh clone.
PRESET ?= default
CMAKE_FLAGS := $(if $(CI),-DVORN_WERROR=ON,)

.PHONY: deps configure build test demo bench format clean

deps:
	@scripts/install-deps

configure: deps
	@cmake --preset $(PRESET) $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build --preset $(PRESET)

test: build
	@ctest --preset $(PRESET)

demo: build
	@build/$(PRESET)/examples/vorn_demo --data build/$(PRESET)/demo-data

# Every bench program, JSON results in build/$(PRESET)/bench-results/, then one table of each
# figure against its floor.
bench: build
	@bench/run.sh build/$(PRESET)

format:
	@git ls-files '*.cpp' '*.hpp' '*.h' | xargs clang-format -i

clean:
	@rm -rf build
