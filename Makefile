# What one tries first, by its usual name. All of it is CMake's work; `cmake --list-presets` has the rest.
.PHONY: all docs packages check clean

all docs packages:
	cmake --preset release
	cmake --build --preset release --target $@

check:
	./check.sh

clean:
	rm -rf build/release
