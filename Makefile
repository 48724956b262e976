# The front door. `make run` and `make test` install what they need on a Debian 12 machine.
.DEFAULT_GOAL := build
.PHONY: run build build-release build-windows test bench unbuilt sanitize fuzz random-programs \
        automation-grid check format layering exports packages packages-test packages-bench clean

JOBS ?= $(shell nproc)
FUZZ_SECONDS ?= 30
PROGRAMS ?= 10000
SEED ?= 1
release := build/release/bin
windows := build/windows/bin
build_preset = cmake --preset $(1) && cmake --build --preset $(1) -j $(JOBS)

# The main job: summary and smoothed series of the air-quality data.
run: packages
	$(call build_preset,release) --target tesselc
	$(release)/tesselc examples/airquality.tc examples/airquality.csv

# Both platforms; nothing is run.
build: build-release build-windows

build-release: packages-test
	$(call build_preset,release)

build-windows: packages-test
	$(call build_preset,windows)

# Every test on both platforms, the second even where the first has failures.
test: build
	ctest --preset release -j $(JOBS); linux=$$?; \
	ctest --preset windows -j $(JOBS) && exit $$linux

# Members through the real call path, and the same work done by other libraries: with the best
# kernels of the machine, and the Windows build beside, then with those for AVX2.
bench: packages-bench build
	bench/run.sh --windows
	bench/run.sh --target AVX2

# Members and classes the library declares but does not have yet.
unbuilt: packages
	$(call build_preset,release)
	$(release)/unbuilt_members

# Every Linux test under AddressSanitizer and UndefinedBehaviorSanitizer, and the automation
# functions on their grid.
sanitize: packages-test
	$(call build_preset,debug)
	ctest --preset debug -j $(JOBS)
	build/debug/bin/automation_grid >/dev/null

# Every fuzz target for FUZZ_SECONDS (30) each; fails on a finding.
fuzz: packages-test
	$(call build_preset,fuzz)
	FUZZ_SECONDS=$(FUZZ_SECONDS) fuzz/run.sh

# PROGRAMS (10000) random programs on both platforms, against a model of the language.
random-programs: packages-test
	$(call build_preset,release) --target tesselc
	$(call build_preset,windows) --target tesselc
	tools/random_programs.py --runner $(release)/tesselc --count $(PROGRAMS) --seed $(SEED)
	tools/random_programs.py --runner $(windows)/tesselc.exe --emulator tools/wine.sh \
	  --count $(PROGRAMS) --seed $(SEED)

# The automation functions of both platforms on a grid of values, line for line.
automation-grid: packages-test
	$(call build_preset,release) --target automation_grid
	$(call build_preset,windows) --target automation_grid
	tools/compare_automation.py

check: format layering exports

format: packages-test
	tools/check_format.sh

layering: packages-test
	tools/check_layering.py

exports: build
	tools/check_exports.sh $(release)/libVELABaseTypes.so
	tools/check_exports.sh $(windows)/VELABaseTypes.dll

packages:
	@tools/install_packages.sh packages.txt

packages-bench:
	@tools/install_packages.sh packages.txt packages-bench.txt

packages-test:
	@tools/install_packages.sh packages.txt packages-test.txt

clean:
	rm -rf build
