# The commands people guess. Each first installs the Debian packages it lacks;
# with everything installed none of them needs a network.
#
#   make run     build, create the demo project when it is not there, open it
#   make test    build and run every test, then the logic tests under sanitizers
#   make help    the rest

.DEFAULT_GOAL := help
.PHONY: help build run test bench format faults fuzz tidy manuel package package-test install-deps clean

FICHIER ?=
export FICHIER

help: ## this list
	@grep -hE '^[a-z-]+:.*##' Makefile | sed -E 's/:.*## /\t/' | expand -t 14

build: ## build the program and herbora-cli (build/release/bin)
	@scripts/construire.sh release herbora herbora-cli

run: ## build and open the demo project (FICHIER=… opens another)
	@scripts/lancer.sh

test: ## build and run every test (HERBORA_SANS_ASAN=1 skips the sanitizers)
	@scripts/tester.sh

bench: ## measure against the same work hand-written in SQLite (BENCH_ARGS=…)
	@scripts/mesurer.sh

faults: ## every file-changing call of every operation, in every mode (FAULTS_ARGS=…)
	@scripts/pannes.sh

fuzz: ## feed the parser and the opening with mutated input (FUZZ_SECONDES=600 each)
	@scripts/fuzz.sh

format: ## lay out all sources with clang-format
	@scripts/formater.sh

tidy: ## clang-tidy on what changed since the last commit (FICHIERS="…" for others)
	@scripts/tidy.sh

manuel: ## take the pictures of the manual anew and make its pages (build/release/manuel)
	@scripts/manuel.sh

package: ## make the Debian package (build/release/paquet)
	@scripts/paquet.sh

package-test: ## install, use and remove the package in a clean Debian (needs root)
	@scripts/essai-paquet.sh

install-deps: ## install every package that any target needs
	@scripts/installer-paquets.sh base run test bench fuzz format tidy manuel paquet essai-paquet

clean: ## remove everything built, with the demo project
	rm -rf build
