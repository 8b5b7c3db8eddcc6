"""Runs the benchmarks and reports them: goals.py and sweeps.py say what is compared with what."""
