"""Rounds of what users do and of what goes wrong, in an order that a seed decides, with what has to hold after each."""
