"""Defaults of the action units against other values, over all recordings that have them."""

import conversations
import news
import sanity
from alternatives import ACTION_UNITS, options
from tables import number, numbers, table


def validate(command, data):
    """The table."""
    return {"action_units": table(["action units", "good above bad news (N1)", *conversations.MEASURES,
                                   "smiles of the talking face, else (S2)"],
                                  [[name, *_measures(command, data, units)]
                                   for name, units in ACTION_UNITS.items()])}


def _measures(command, data, units):
    of_news = "" if units.full_scale else number(news.margin_by_action_units(command, data, units))
    of_conversations = conversations.measures_of(command, data, units)
    smiles_and_else = sanity.smiling_and_serious(command, data, *options(command, units))
    return [of_news, *of_conversations, numbers(smiles_and_else)]
